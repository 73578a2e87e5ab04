#include "app/value_text.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>

#include "app/console.h"
#include "jet/guid_text.h"

namespace quillon {
namespace {

std::string DateText(jet::Date date) {
    constexpr double MillisecondsPerDay = 86'400'000;
    // The dates that a database can hold: years 100 to 9999.
    constexpr double FirstDay = -657'434, LastDay = 2'958'466;
    if (!(date.days >= FirstDay && date.days < LastDay)) return fmt::format("{}", date.days);

    namespace chrono = std::chrono;
    const double wholeDays = std::trunc(date.days);
    const chrono::milliseconds inDay(
        std::llround(std::abs(date.days - wholeDays) * MillisecondsPerDay));
    const chrono::sys_days zero = chrono::year(1899) / chrono::December / 30;
    const auto moment = zero + chrono::days(static_cast<int>(wholeDays)) + inDay;
    const auto midnight = chrono::floor<chrono::days>(moment);
    const chrono::year_month_day day(midnight);
    const chrono::hh_mm_ss<chrono::milliseconds> time(moment - midnight);
    std::string text =
        fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", static_cast<int>(day.year()),
                    static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                    time.hours().count(), time.minutes().count(), time.seconds().count());
    if (time.subseconds().count() != 0) text += fmt::format(".{:03}", time.subseconds().count());
    return text;
}

/// Digits with a decimal point before the last `scale` of them.
std::string WithPoint(std::string digits, std::size_t scale, bool negative) {
    if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
    if (scale > 0) digits.insert(digits.size() - scale, 1, '.');
    return negative ? '-' + digits : digits;
}

std::string CurrencyText(jet::Currency currency) {
    const bool negative = currency.tenThousandths < 0;
    auto magnitude = static_cast<std::uint64_t>(currency.tenThousandths);
    if (negative) magnitude = 0 - magnitude;
    return WithPoint(std::to_string(magnitude), 4, negative);
}

std::string DecimalText(const jet::Decimal& decimal) {
    auto words = decimal.magnitude;
    std::string digits;
    while (std::ranges::any_of(words, [](std::uint32_t word) { return word != 0; })) {
        std::uint64_t remainder = 0;
        for (std::uint32_t& word : words) {
            const std::uint64_t part = (remainder << 32) | word;
            word = static_cast<std::uint32_t>(part / 10);
            remainder = part % 10;
        }
        digits += static_cast<char>('0' + remainder);
    }
    std::ranges::reverse(digits);
    if (digits.empty()) digits = "0";
    return WithPoint(digits, decimal.scale, decimal.negative);
}

std::string Base64(const jet::Bytes& bytes) {
    constexpr std::string_view Digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = (group << 8) | (k < count ? bytes[i + k] : std::uint32_t{0});
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= count ? Digits[(group >> (18 - 6 * k)) & 0x3F] : '=';
    }
    return text;
}

struct ValueAsText {
    std::string operator()(jet::Null) const { return "<null>"; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const { return fmt::format("{}", value); }
    std::string operator()(jet::Date value) const { return DateText(value); }
    std::string operator()(jet::Currency value) const { return CurrencyText(value); }
    std::string operator()(const jet::Decimal& value) const { return DecimalText(value); }
    std::string operator()(const jet::Guid& value) const { return jet::GuidText(value); }
    std::string operator()(const jet::Bytes& value) const { return Base64(value); }
    std::string operator()(const std::string& value) const { return value; }
};

struct JsonOf {
    std::string operator()(jet::Null) const { return "null"; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const {
        return std::isfinite(value) ? fmt::format("{}", value) : "null";
    }
    template <typename Other>
    std::string operator()(const Other& value) const {
        return JsonString(ValueAsText{}(value));
    }
};

/// Whether the text begins with the three bytes of a code point from U+D800 to U+DFFF, which are no
/// UTF-8 but how the database keeps a lone UTF-16 surrogate.
bool BeginsWithSurrogate(std::string_view text) {
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    return text.size() >= 3 && byte(0) == 0xED && byte(1) >= 0xA0 && byte(1) <= 0xBF &&
           byte(2) >= 0x80 && byte(2) <= 0xBF;
}

/// The bytes of the UTF-8 character that the text begins with; 0 where it begins with none.
std::size_t SizeOfCharacter(std::string_view text) {
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    const std::size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < size) return 0;
    for (std::size_t i = 1; i < size; ++i)
        if ((byte(i) & 0xC0U) != 0x80U) return 0;
    // Longer than needed, a surrogate, or beyond the last character.
    const bool isWrong = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F) ||
                         (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F);
    return isWrong ? 0 : size;
}

std::optional<jet::Bytes> FromBase64(std::string_view text) {
    constexpr std::string_view Digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    jet::Bytes bytes;
    if (text.size() % 4 != 0) return std::nullopt;
    while (text.ends_with('=') && text.size() % 4 != 2)
        text.remove_suffix(1);
    std::uint32_t bits = 0;
    unsigned count = 0;
    for (const char letter : text) {
        const std::size_t digit = Digits.find(letter);
        if (digit == std::string_view::npos) return std::nullopt;
        bits = (bits << 6) | static_cast<std::uint32_t>(digit);
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes.push_back(static_cast<std::uint8_t>(bits >> count));
    }
    return bytes;
}

/// Digits of the text from `at` on, exactly `count` of them.
std::optional<int> Digits(std::string_view text, std::size_t at, std::size_t count) {
    if (at + count > text.size()) return std::nullopt;
    int number = 0;
    for (const char digit : text.substr(at, count)) {
        if (digit < '0' || digit > '9') return std::nullopt;
        number = number * 10 + (digit - '0');
    }
    return number;
}

/// "08:00", "08:00:00" or "08:00:00.250" as a part of a day.
std::optional<double> PartOfDay(std::string_view text) {
    const auto hours = Digits(text, 0, 2), minutes = Digits(text, 3, 2);
    if (!hours || !minutes || text[2] != ':' || *hours > 23 || *minutes > 59) return std::nullopt;
    double seconds = *hours * 3600.0 + *minutes * 60.0;
    if (text.size() > 5) {
        const auto whole = Digits(text, 6, 2);
        if (!whole || text[5] != ':' || *whole > 59) return std::nullopt;
        seconds += *whole;
    }
    if (text.size() > 8) {
        const auto thousandths = Digits(text, 9, 3);
        if (!thousandths || text[8] != '.' || text.size() != 12) return std::nullopt;
        seconds += *thousandths / 1000.0;
    }
    return seconds / 86400;
}

}  // namespace

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t size = SizeOfCharacter(text);
        if (size == 0) return false;
        text.remove_prefix(size);
    }
    return true;
}

std::optional<jet::Date> ParseIsoDate(std::string_view text) {
    namespace chrono = std::chrono;
    const auto year = Digits(text, 0, 4), month = Digits(text, 5, 2), day = Digits(text, 8, 2);
    if (!year || !month || !day || text[4] != '-' || text[7] != '-') return std::nullopt;
    const chrono::year_month_day date(chrono::year(*year),
                                      chrono::month(static_cast<unsigned>(*month)),
                                      chrono::day(static_cast<unsigned>(*day)));
    if (!date.ok()) return std::nullopt;
    const chrono::sys_days zero = chrono::year(1899) / chrono::December / 30;
    const auto days = static_cast<double>((chrono::sys_days(date) - zero).count());
    if (text.size() == 10) return jet::Date{days};
    if (text[10] != 'T' && text[10] != ' ') return std::nullopt;
    const auto part = PartOfDay(text.substr(11));
    if (!part) return std::nullopt;
    // The time counts forward in days below zero, too.
    return jet::Date{days < 0 ? days - *part : days + *part};
}

jet::Value ValueFor(const jet::ColumnDefinition& column, std::string_view text) {
    switch (column.type) {
        case jet::ColumnType::Date:
            if (const auto date = ParseIsoDate(text)) return *date;
            break;
        case jet::ColumnType::Boolean:
            if (text == "yes" || text == "Yes" || text == "YES") return true;
            if (text == "no" || text == "No" || text == "NO") return false;
            break;
        case jet::ColumnType::Binary:
        case jet::ColumnType::Ole:
            if (auto bytes = FromBase64(text)) return *std::move(bytes);
            throw CommandError("a binary value must be written in base64");
        default:
            break;
    }
    return std::string(text);
}

std::string CellText(const jet::Value& value) {
    constexpr std::size_t Shown = 12;
    const auto* const bytes = std::get_if<jet::Bytes>(&value);
    if (bytes == nullptr || bytes->size() <= 2 * Shown) return ValueText(value);
    return fmt::format("{}... ({} bytes)", Base64({bytes->begin(), bytes->begin() + Shown}),
                       bytes->size());
}

std::string ValueText(const jet::Value& value) {
    return std::visit(ValueAsText{}, value);
}

std::string JsonValue(const jet::Value& value) {
    return std::visit(JsonOf{}, value);
}

std::string JsonString(std::string_view text) {
    std::string json = "\"";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte == '"' || byte == '\\') {
            json += '\\';
            json += text[i];
        } else if (byte == '\n') {
            json += "\\n";
        } else if (byte == '\t') {
            json += "\\t";
        } else if (byte == '\r') {
            json += "\\r";
        } else if (byte < 0x20 || byte == 0x7F) {
            json += fmt::format("\\u{:04x}", byte);
        } else if (BeginsWithSurrogate(text.substr(i))) {
            const unsigned second = static_cast<unsigned char>(text[i + 1]) & 0x3FU;
            const unsigned third = static_cast<unsigned char>(text[i + 2]) & 0x3FU;
            json += fmt::format("\\u{:04x}", 0xD000U | (second << 6) | third);
            i += 2;
        } else if (const std::size_t size = SizeOfCharacter(text.substr(i)); size > 0) {
            json += text.substr(i, size);
            i += size - 1;
        } else {
            json += "\xEF\xBF\xBD";
        }
    }
    return json += '"';
}

}  // namespace quillon
