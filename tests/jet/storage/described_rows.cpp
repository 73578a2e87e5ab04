#include "tests/jet/storage/described_rows.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "jet/storage/format/values.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

/// Reads one line of {"table":"T","row":{"column":value,...}}.
class LineReader {
  public:
    explicit LineReader(std::string_view line) : line_(line) {}

    DescribedRow Read() {
        DescribedRow row;
        Expect('{');
        Expect(ReadText() == "table");
        Expect(':');
        row.table = ReadText();
        Expect(',');
        Expect(ReadText() == "row");
        Expect(':');
        Expect('{');
        while (Peek() != '}') {
            if (Peek() == ',') ++position_;
            std::string name = ReadText();
            Expect(':');
            row.fields.emplace_back(std::move(name), ReadValue());
        }
        return row;
    }

  private:
    char Peek() const { return position_ < line_.size() ? line_[position_] : '\0'; }
    void Expect(char letter) {
        Expect(Peek() == letter);
        ++position_;
    }
    static void Expect(bool holds) {
        if (!holds) throw std::runtime_error("the description is not as expected");
    }

    DescribedValue ReadValue() {
        if (Peek() == '"') return {DescribedValue::Kind::Text, ReadText()};
        const std::size_t start = position_;
        while (Peek() != ',' && Peek() != '}' && Peek() != '\0')
            ++position_;
        const std::string text(line_.substr(start, position_ - start));
        const bool isWord = text == "null" || text == "true" || text == "false";
        return {isWord ? DescribedValue::Kind::Word : DescribedValue::Kind::Number, text};
    }

    std::string ReadText() {
        Expect('"');
        std::u16string units;
        std::string plain;
        const auto flush = [&] {
            units += ToUtf16(plain);
            plain.clear();
        };
        while (Peek() != '"') {
            Expect(position_ < line_.size());
            const char letter = line_[position_++];
            if (letter != '\\') {
                plain.push_back(letter);
                continue;
            }
            flush();
            units.push_back(ReadEscape());
        }
        flush();
        ++position_;
        return ToUtf8(units);
    }

    char16_t ReadEscape() {
        const char letter = line_[position_++];
        switch (letter) {
            case 'n':
                return u'\n';
            case 'r':
                return u'\r';
            case 't':
                return u'\t';
            case 'b':
                return u'\b';
            case 'f':
                return u'\f';
            case 'u': {
                const std::string digits(line_.substr(position_, 4));
                position_ += digits.size();
                return static_cast<char16_t>(std::strtoul(digits.c_str(), nullptr, 16));
            }
            default:
                return static_cast<char16_t>(letter);
        }
    }

    std::string_view line_;
    std::size_t position_ = 0;
};

std::string Base64(const Bytes& bytes) {
    constexpr std::string_view Letters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t j = 0; j < 3; ++j) {
            group = group << 8 | (i + j < bytes.size() ? bytes[i + j] : 0U);
        }
        for (std::size_t j = 0; j < 4; ++j) {
            const bool padding = i + j > bytes.size();
            text.push_back(padding ? '=' : Letters[group >> (18 - 6 * j) & 63]);
        }
    }
    return text;
}

/// Digits with the point `scale` places from the right.
std::string WithPoint(std::string digits, std::size_t scale, bool negative) {
    while (digits.size() <= scale)
        digits.insert(digits.begin(), '0');
    if (scale != 0) digits.insert(digits.size() - scale, ".");
    return (negative ? "-" : "") + digits;
}

std::string TextOf(const Decimal& decimal) {
    auto rest = decimal.magnitude;
    std::string digits;
    bool isZero = false;
    while (!isZero) {
        std::uint64_t remainder = 0;
        isZero = true;
        for (auto& word : rest) {
            const std::uint64_t part = remainder << 32 | word;
            word = static_cast<std::uint32_t>(part / 10);
            remainder = part % 10;
            if (word != 0) isZero = false;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + remainder));
    }
    const bool isNothing = digits.find_first_not_of('0') == std::string::npos;
    return WithPoint(digits, decimal.scale, decimal.negative && !isNothing);
}

std::string TextOf(Date date) {
    constexpr double MillisecondsPerDay = 86400000;
    const double day = std::trunc(date.days);
    double milliseconds = std::round(std::abs(date.days - day) * MillisecondsPerDay);
    auto days = static_cast<std::int64_t>(day) - 25569;
    if (milliseconds >= MillisecondsPerDay) {
        milliseconds -= MillisecondsPerDay;
        ++days;
    }
    // Days since 1970 to a date: count from 1 March of the year 0, in cycles of 400 years.
    const std::int64_t shifted = days + 719468;
    const std::int64_t cycle = (shifted >= 0 ? shifted : shifted - 146096) / 146097;
    const std::int64_t dayOfCycle = shifted - cycle * 146097;
    const std::int64_t yearOfCycle =
        (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / 146096) / 365;
    const std::int64_t dayOfYear =
        dayOfCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
    const std::int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;
    const std::int64_t month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    const std::int64_t year = yearOfCycle + cycle * 400 + (month <= 2 ? 1 : 0);
    const std::int64_t dayOfMonth = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    const auto time = static_cast<std::int64_t>(milliseconds);

    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d", static_cast<int>(year),
                  static_cast<int>(month), static_cast<int>(dayOfMonth),
                  static_cast<int>(time / 3600000), static_cast<int>(time / 60000 % 60),
                  static_cast<int>(time / 1000 % 60));
    std::string result = text.data();
    if (time % 1000 != 0) {
        std::snprintf(text.data(), text.size(), ".%03d", static_cast<int>(time % 1000));
        result += text.data();
    }
    return result;
}

std::string TextOf(const Guid& guid) {
    std::string text = "{";
    for (std::size_t i = 0; i < guid.bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        std::array<char, 8> hex{};
        std::snprintf(hex.data(), hex.size(), "%02X", guid.bytes[i]);
        text += hex.data();
    }
    return text + "}";
}

struct Describer {
    using Kind = DescribedValue::Kind;
    DescribedValue operator()(Null) const { return {Kind::Word, "null"}; }
    DescribedValue operator()(bool value) const { return {Kind::Word, value ? "true" : "false"}; }
    DescribedValue operator()(std::int64_t value) const {
        return {Kind::Number, std::to_string(value)};
    }
    DescribedValue operator()(double value) const { return {Kind::Number, std::to_string(value)}; }
    DescribedValue operator()(Date value) const { return {Kind::Text, TextOf(value)}; }
    DescribedValue operator()(Currency value) const {
        const std::int64_t number = value.tenThousandths;
        const std::string digits = std::to_string(number);
        return {Kind::Text, WithPoint(number < 0 ? digits.substr(1) : digits, 4, number < 0)};
    }
    DescribedValue operator()(const Decimal& value) const { return {Kind::Text, TextOf(value)}; }
    DescribedValue operator()(const Guid& value) const { return {Kind::Text, TextOf(value)}; }
    DescribedValue operator()(const Bytes& value) const { return {Kind::Text, Base64(value)}; }
    DescribedValue operator()(const std::string& value) const { return {Kind::Text, value}; }
};

}  // namespace

std::vector<DescribedRow> ReadDescribedRows(const std::filesystem::path& database) {
    auto file = database;
    file.replace_extension(".jsonl.gz");
    const std::string lines = OutputOf("gzip -dc " + file.string());
    std::vector<DescribedRow> rows;
    for (std::size_t start = 0; start < lines.size();) {
        const std::size_t end = lines.find('\n', start);
        rows.push_back(LineReader(std::string_view(lines).substr(start, end - start)).Read());
        start = end + 1;
    }
    return rows;
}

DescribedValue Describe(const Value& value) {
    return std::visit(Describer{}, value);
}

bool Matches(const Value& value, const DescribedValue& described) {
    if (const double* number = std::get_if<double>(&value)) {
        const double expected = std::strtod(described.text.c_str(), nullptr);
        return described.kind == DescribedValue::Kind::Number &&
               (*number == expected ||
                static_cast<float>(*number) == std::strtof(described.text.c_str(), nullptr));
    }
    const DescribedValue own = Describe(value);
    return own.kind == described.kind && own.text == described.text;
}

}  // namespace jet::storage::test
