#include "jet/engine/decimal_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace jet::engine {

namespace {

using Magnitude = std::array<std::uint32_t, 4>;

/// magnitude * 10 + digit; false when it no longer fits.
bool AppendDigit(Magnitude& magnitude, std::uint32_t digit) {
    std::uint64_t carry = digit;
    for (auto word = magnitude.rbegin(); word != magnitude.rend(); ++word) {
        const std::uint64_t product = std::uint64_t{*word} * 10 + carry;
        *word = static_cast<std::uint32_t>(product);
        carry = product >> 32;
    }
    return carry == 0;
}

/// Takes off the last digit.
std::uint32_t RemoveDigit(Magnitude& magnitude) {
    std::uint64_t rest = 0;
    for (std::uint32_t& word : magnitude) {
        const std::uint64_t value = rest << 32 | word;
        word = static_cast<std::uint32_t>(value / 10);
        rest = value % 10;
    }
    return static_cast<std::uint32_t>(rest);
}

bool IsZero(const Magnitude& magnitude) {
    return magnitude == Magnitude{};
}

/// Adds one to a row of decimal digits.
void Increment(std::string& digits) {
    for (std::size_t i = digits.size(); i-- > 0;) {
        if (digits[i] != '9') {
            ++digits[i];
            return;
        }
        digits[i] = '0';
    }
    digits.insert(digits.begin(), '1');
}

/// Cuts the digits behind the point to `scale`, halves to even.
void RoundDigits(std::string& whole, std::string& part, std::size_t scale) {
    std::string digits = whole + part.substr(0, scale);
    const std::string cut = part.size() > scale ? part.substr(scale) : "";
    digits.append(scale > part.size() ? scale - part.size() : 0, '0');
    if (!cut.empty()) {
        const bool exactHalf = cut[0] == '5' && cut.find_first_not_of('0', 1) == std::string::npos;
        const bool odd = !digits.empty() && (digits.back() - '0') % 2 == 1;
        if (exactHalf ? odd : cut[0] >= '5') Increment(digits);
    }
    whole = digits;
    part.clear();
}

}  // namespace

std::string DecimalText(const Decimal& decimal) {
    Magnitude magnitude = decimal.magnitude;
    std::string text;
    do {
        text.push_back(static_cast<char>('0' + RemoveDigit(magnitude)));
        if (text.size() == decimal.scale) text.push_back('.');
    } while (!IsZero(magnitude) || text.size() <= decimal.scale);
    if (text.back() == '.') text.push_back('0');
    if (decimal.negative) text.push_back('-');
    std::reverse(text.begin(), text.end());
    return text;
}

double DecimalToReal(const Decimal& decimal) {
    const std::string text = DecimalText(decimal);
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::optional<Decimal> ParseDecimal(std::string_view text, std::uint8_t precision,
                                    std::uint8_t scale) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    Decimal decimal;
    decimal.scale = scale;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        decimal.negative = text.front() == '-';
        text.remove_prefix(1);
    }
    const std::size_t point = std::min(text.find('.'), text.size());
    std::string whole(text.substr(0, point));
    std::string part(point < text.size() ? text.substr(point + 1) : "");
    if (whole.empty() && part.empty()) return std::nullopt;
    if ((whole + part).find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
    RoundDigits(whole, part, scale);
    whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size()));
    if (precision > 0 && whole.size() > precision) return std::nullopt;
    for (const char digit : whole)
        if (!AppendDigit(decimal.magnitude, static_cast<std::uint32_t>(digit - '0')))
            return std::nullopt;
    if (IsZero(decimal.magnitude)) decimal.negative = false;
    return decimal;
}

std::string FixedText(double number) {
    if (!std::isfinite(number)) return "";
    std::array<char, 400> buffer{};
    const double size = number == 0 ? 0 : std::floor(std::log10(std::abs(number)));
    const int places = static_cast<int>(std::clamp(14 - size, 0.0, 40.0));
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                      std::chars_format::fixed, places);
    return {buffer.data(), result.ptr};
}

}  // namespace jet::engine
