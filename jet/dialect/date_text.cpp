#include "jet/dialect/date_text.h"

#include <chrono>
#include <cmath>
#include <cstdint>

#include "jet/dialect/digits.h"
#include "jet/dialect/names.h"

namespace jet::dialect {

namespace {

using std::chrono::sys_days;
constexpr sys_days Epoch = std::chrono::year{1899} / 12 / 30;
constexpr std::int64_t SecondsPerDay = 86400;

void SkipBlanks(std::string_view& text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
}

/// A number of at most four digits; `digits` tells how many there were.
std::optional<int> TakeNumber(std::string_view& text, std::size_t* digits = nullptr) {
    std::size_t length = 0;
    int number = 0;
    while (length < text.size() && length < 5 && IsDigit(text[length]))
        number = number * 10 + (text[length++] - '0');
    if (length == 0 || length > 4) return std::nullopt;
    text.remove_prefix(length);
    if (digits) *digits = length;
    return number;
}

bool TakeSign(std::string_view& text, std::string_view signs) {
    if (text.empty() || signs.find(text.front()) == std::string_view::npos) return false;
    text.remove_prefix(1);
    return true;
}

int FullYear(int year, std::size_t digits) {
    if (digits > 2) return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

bool TakeDay(std::string_view& text, DateParts& parts) {
    static constexpr std::string_view Separators = "/-.";
    std::size_t firstDigits = 0, lastDigits = 0;
    const auto first = TakeNumber(text, &firstDigits);
    if (!first || !TakeSign(text, Separators)) return false;
    const auto second = TakeNumber(text);
    if (!second || !TakeSign(text, Separators)) return false;
    const auto third = TakeNumber(text, &lastDigits);
    if (!third) return false;
    if (firstDigits > 2) {
        parts.year = *first, parts.month = *second, parts.day = *third;
    } else {
        parts.year = FullYear(*third, lastDigits), parts.month = *first, parts.day = *second;
        if (parts.month > 12) std::swap(parts.month, parts.day);
    }
    const std::chrono::year_month_day day{std::chrono::year{parts.year},
                                          std::chrono::month{static_cast<unsigned>(parts.month)},
                                          std::chrono::day{static_cast<unsigned>(parts.day)}};
    return day.ok() && parts.year >= 100;
}

bool TakeTime(std::string_view& text, DateParts& parts) {
    const auto hour = TakeNumber(text);
    if (!hour || !TakeSign(text, ":")) return false;
    const auto minute = TakeNumber(text);
    if (!minute) return false;
    parts.hour = *hour, parts.minute = *minute;
    if (TakeSign(text, ":")) {
        const auto second = TakeNumber(text);
        if (!second) return false;
        parts.second = *second;
    }
    SkipBlanks(text);
    const bool am = SameName(text.substr(0, 2), "am"), pm = SameName(text.substr(0, 2), "pm");
    if (am || pm) {
        text.remove_prefix(2);
        if (parts.hour < 1 || parts.hour > 12) return false;
        parts.hour = parts.hour % 12 + (pm ? 12 : 0);
    }
    return parts.hour < 24 && parts.minute < 60 && parts.second < 60;
}

std::string TwoDigits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

std::optional<double> ParseDate(std::string_view text) {
    SkipBlanks(text);
    DateParts parts{1899, 12, 30, 0, 0, 0};
    const bool hasDay = text.find_first_of("/-.") != std::string_view::npos;
    if (hasDay) {
        if (!TakeDay(text, parts)) return std::nullopt;
        if (!text.empty() && text.front() == 'T') text.remove_prefix(1);
        SkipBlanks(text);
    }
    if (!hasDay || !text.empty()) {
        if (!TakeTime(text, parts)) return std::nullopt;
    }
    SkipBlanks(text);
    if (!text.empty()) return std::nullopt;
    return JoinDate(parts);
}

DateParts SplitDate(double days) {
    if (!std::isfinite(days) || std::abs(days) > 3e6) return {};
    double whole = std::trunc(days);
    std::int64_t seconds = std::llround(std::abs(days - whole) * SecondsPerDay);
    if (seconds == SecondsPerDay) {
        seconds = 0;
        whole += 1;
    }
    const std::chrono::year_month_day day{Epoch +
                                          std::chrono::days{static_cast<std::int64_t>(whole)}};
    return {static_cast<int>(day.year()),
            static_cast<int>(static_cast<unsigned>(day.month())),
            static_cast<int>(static_cast<unsigned>(day.day())),
            static_cast<int>(seconds / 3600),
            static_cast<int>(seconds / 60 % 60),
            static_cast<int>(seconds % 60)};
}

double JoinDate(const DateParts& parts) {
    const sys_days day = std::chrono::year{parts.year} /
                         std::chrono::month{static_cast<unsigned>(parts.month)} /
                         std::chrono::day{static_cast<unsigned>(parts.day)};
    const auto whole = static_cast<double>((day - Epoch).count());
    const double time =
        static_cast<double>(parts.hour * 3600 + parts.minute * 60 + parts.second) / SecondsPerDay;
    return whole < 0 ? whole - time : whole + time;
}

std::string DateText(double days) {
    const DateParts parts = SplitDate(days);
    const bool hasDay = parts.year != 1899 || parts.month != 12 || parts.day != 30;
    const bool hasTime = parts.hour != 0 || parts.minute != 0 || parts.second != 0;
    std::string text;
    if (hasDay) {
        text = std::to_string(parts.month) + '/' + std::to_string(parts.day) + '/' +
               std::to_string(parts.year);
        if (!hasTime) return text;
        text += ' ';
    }
    const int hour = parts.hour % 12 == 0 ? 12 : parts.hour % 12;
    text += std::to_string(hour) + ':' + TwoDigits(parts.minute) + ':' + TwoDigits(parts.second);
    return text + (parts.hour < 12 ? " AM" : " PM");
}

}  // namespace jet::dialect
