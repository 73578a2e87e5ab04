#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/basic_text.h"
#include "platform/failure.h"

namespace quillon {
namespace {

/// What the runtime makes of a text that should be a number.
struct Reading {
    enum class Outcome { Number, NotANumber, TooLarge } outcome = Outcome::NotANumber;
    double number = 0;
    std::optional<std::uint64_t> bits;  ///< of a &H or &O form
};

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Whether a number beyond a double's range ("1e-400", "0.00...01") is so by being near zero, which
/// the runtime takes for zero.
bool IsBelowOne(std::string_view digits) {
    const std::size_t letter = std::min(digits.find('e'), digits.size());
    const std::string_view mantissa = digits.substr(0, letter);
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = mantissa.find_first_not_of("0.");
    if (first == std::string_view::npos) return true;
    if (letter == digits.size()) return first > point;
    std::int64_t exponent = 0;
    const std::string_view text = digits.substr(letter + 1);
    const auto result = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (result.ec != std::errc{}) return text.starts_with('-');
    return static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) + exponent <= 0;
}

/// Reads a number from the first character to the last; every part is optional but the digits.
class NumberReader {
  public:
    explicit NumberReader(std::string_view text) : rest_(text) {}

    Reading Read() {
        SkipBlanks();
        if (!rest_.empty() && rest_.front() == '&') return ReadBits();
        ReadLeading();
        if (!ReadDigits()) return {};
        ReadExponent();
        if (!ReadTrailing()) return {};
        return Value();
    }

  private:
    bool Take(char wanted) {
        if (rest_.empty() || rest_.front() != wanted) return false;
        rest_.remove_prefix(1);
        return true;
    }

    void SkipBlanks() {
        while (!rest_.empty() &&
               (rest_.front() == ' ' || (rest_.front() >= '\t' && rest_.front() <= '\r')))
            rest_.remove_prefix(1);
    }

    /// A sign may stand on one side, and only where no parenthesis says the same.
    bool TakeSign() {
        if (signed_ || rest_.empty() || (rest_.front() != '-' && rest_.front() != '+')) {
            return false;
        }
        signed_ = true;
        negative_ = rest_.front() == '-';
        rest_.remove_prefix(1);
        return true;
    }

    bool TakeCurrency() {
        if (currency_ || !Take('$')) return false;
        currency_ = true;
        return true;
    }

    bool TakeOpening() {
        if (signed_ || !Take('(')) return false;
        signed_ = negative_ = open_ = true;
        return true;
    }

    bool TakeClosing() {
        if (!open_ || !Take(')')) return false;
        open_ = false;
        return true;
    }

    void ReadLeading() {
        while (TakeSign() || TakeCurrency() || TakeOpening())
            SkipBlanks();
    }

    /// Digits with separators between or behind them, then perhaps a point and more digits.
    bool ReadDigits() {
        const std::size_t start = digits_.size();
        while (!rest_.empty()) {
            if (IsDigit(rest_.front())) {
                digits_ += rest_.front();
            } else if (rest_.front() != ',' || digits_.size() == start) {
                break;
            }
            rest_.remove_prefix(1);
        }
        const bool whole = digits_.size() > start;
        if (!Take('.')) return whole;
        digits_ += whole ? "." : "0.";
        return TakePlainDigits() || whole;
    }

    bool TakePlainDigits() {
        const std::size_t before = digits_.size();
        for (; !rest_.empty() && IsDigit(rest_.front()); rest_.remove_prefix(1))
            digits_ += rest_.front();
        return digits_.size() > before;
    }

    /// Without digits of its own the letter is no exponent and stays, to be refused as a rest.
    void ReadExponent() {
        constexpr std::string_view Letters = "eEdD";
        if (rest_.empty() || Letters.find(rest_.front()) == std::string_view::npos) return;
        std::size_t at = 1;
        const bool hasSign = at < rest_.size() && (rest_[at] == '-' || rest_[at] == '+');
        if (hasSign) ++at;
        if (at >= rest_.size() || !IsDigit(rest_[at])) return;
        digits_ += 'e';
        if (rest_[1] == '-') digits_ += '-';
        rest_.remove_prefix(at);
        TakePlainDigits();
    }

    bool ReadTrailing() {
        SkipBlanks();
        while (TakeSign() || TakeCurrency() || TakeClosing())
            SkipBlanks();
        return rest_.empty() && !open_;
    }

    Reading Value() const {
        double number = 0;
        const char* const end = digits_.data() + digits_.size();
        const auto result = std::from_chars(digits_.data(), end, number);
        if (result.ec == std::errc::result_out_of_range) {
            if (!IsBelowOne(digits_)) return {Reading::Outcome::TooLarge, 0, {}};
            number = 0;
        }
        return {Reading::Outcome::Number, negative_ ? -number : number, {}};
    }

    /// &H1F, &O17 or &17.
    Reading ReadBits() {
        Take('&');
        const bool hexadecimal = Take('H') || Take('h');
        if (!hexadecimal && !Take('O')) Take('o');
        std::uint64_t bits = 0;
        const auto result =
            std::from_chars(rest_.data(), rest_.data() + rest_.size(), bits, hexadecimal ? 16 : 8);
        if (result.ec == std::errc::invalid_argument) return {};
        rest_.remove_prefix(static_cast<std::size_t>(result.ptr - rest_.data()));
        SkipBlanks();
        if (!rest_.empty()) return {};
        if (result.ec == std::errc::result_out_of_range) {
            return {Reading::Outcome::TooLarge, 0, {}};
        }
        return {Reading::Outcome::Number, static_cast<double>(bits), bits};
    }

    std::string_view rest_;
    std::string digits_;  ///< in the form that the standard library reads
    bool negative_ = false, signed_ = false, currency_ = false, open_ = false;
};

template <typename Integer>
Integer Whole(double number, std::string_view concerning) {
    const double rounded = std::nearbyint(number);  // halves to even
    if (!(rounded >= std::numeric_limits<Integer>::min() &&
          rounded <= std::numeric_limits<Integer>::max())) {
        throw Failure(FailureNumber::Overflow, std::string(concerning));
    }
    return static_cast<Integer>(rounded);
}

template <typename Integer>
Integer Whole(std::string_view text) {
    const Reading reading = NumberReader(text).Read();
    if (reading.outcome == Reading::Outcome::NotANumber) {
        throw Failure(FailureNumber::TypeMismatch, std::string(text));
    }
    if (reading.outcome == Reading::Outcome::TooLarge) {
        throw Failure(FailureNumber::Overflow, std::string(text));
    }
    using Bits = std::make_unsigned_t<Integer>;
    if (reading.bits && *reading.bits <= std::numeric_limits<Bits>::max()) {
        return static_cast<Integer>(static_cast<Bits>(*reading.bits));
    }
    return Whole<Integer>(reading.number, text);
}

}  // namespace

bool IsNumeric(std::string_view text) {
    return ToNumber(text).has_value();
}

std::optional<double> ToNumber(std::string_view text) {
    const Reading reading = NumberReader(text).Read();
    if (reading.outcome != Reading::Outcome::Number) return std::nullopt;
    return reading.number;
}

std::int16_t ToInteger(std::string_view text) {
    return Whole<std::int16_t>(text);
}

std::int16_t ToInteger(double number) {
    return Whole<std::int16_t>(number, std::to_string(number));
}

std::int32_t ToLong(std::string_view text) {
    return Whole<std::int32_t>(text);
}

bool ToBoolean(std::string_view text) {
    if (EqualIgnoringCase(text, "True") || EqualIgnoringCase(text, "#TRUE#")) return true;
    if (EqualIgnoringCase(text, "False") || EqualIgnoringCase(text, "#FALSE#")) return false;
    const std::optional<double> number = ToNumber(text);
    if (!number) throw Failure(FailureNumber::TypeMismatch, std::string(text));
    return *number != 0;
}

}  // namespace quillon
