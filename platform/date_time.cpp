#include "platform/date_time.h"

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "platform/failure.h"

namespace quillon {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::int64_t SecondsADay = std::int64_t{24} * 60 * 60;
constexpr sys_days ZeroDate{
    year_month_day{std::chrono::year{1899}, std::chrono::month{12}, std::chrono::day{30}}};
// Midnight of 1 January 100 and of 1 January 10000: what the runtime's dates span.
constexpr double FirstDay = -657434;
constexpr double BehindLastDay = 2958466;

/// A date and time taken apart.
struct Civil {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    bool isZeroDate = false, isMidnight = false;
};

Civil TakeApart(DateTime time) {
    if (!(time.days > FirstDay - 1 && time.days < BehindLastDay)) {
        throw Failure(FailureNumber::Overflow, "date " + std::to_string(time.days));
    }
    const double whole = std::trunc(time.days);
    auto day = static_cast<std::int64_t>(whole);
    auto second = std::llround(std::abs(time.days - whole) * static_cast<double>(SecondsADay));
    if (second == SecondsADay) {
        second = 0;
        ++day;
    }
    const year_month_day date{ZeroDate + std::chrono::days{day}};
    Civil civil;
    civil.year = static_cast<int>(date.year());
    civil.month = static_cast<int>(static_cast<unsigned>(date.month()));
    civil.day = static_cast<int>(static_cast<unsigned>(date.day()));
    civil.hour = static_cast<int>(second / 3600);
    civil.minute = static_cast<int>(second / 60 % 60);
    civil.second = static_cast<int>(second % 60);
    civil.isZeroDate = day == 0;
    civil.isMidnight = second == 0;
    return civil;
}

template <typename... Numbers>
std::string Print(const char* format, Numbers... numbers) {
    char text[64];
    const int length = std::snprintf(text, sizeof text, format, numbers...);
    return {text, static_cast<std::size_t>(length)};
}

/// The digits of a number that end before a place. Journals have three dates for each new row.
void PutDigits(std::string& text, std::size_t end, int number) {
    for (; number > 0; number /= 10)
        text[--end] = static_cast<char>('0' + number % 10);
}

std::string TimeText(const Civil& civil) {
    const int hour = civil.hour % 12 == 0 ? 12 : civil.hour % 12;
    return Print("%d:%02d:%02d %s", hour, civil.minute, civil.second,
                 civil.hour < 12 ? "AM" : "PM");
}

}  // namespace

std::string DateTimeText(DateTime time) {
    const Civil civil = TakeApart(time);
    if (civil.isZeroDate) return TimeText(civil);
    const std::string date = Print("%d/%d/%04d", civil.month, civil.day, civil.year);
    return civil.isMidnight ? date : date + ' ' + TimeText(civil);
}

std::string SortableDateTimeText(DateTime time) {
    const Civil civil = TakeApart(time);
    std::string text = "0000-00-00 00:00:00";
    PutDigits(text, 4, civil.year);
    PutDigits(text, 7, civil.month);
    PutDigits(text, 10, civil.day);
    PutDigits(text, 13, civil.hour);
    PutDigits(text, 16, civil.minute);
    PutDigits(text, 19, civil.second);
    return text;
}

DateTime MakeDateTime(int year, int month, int day, int hour, int minute, int second) {
    const sys_days date{year_month_day{std::chrono::year{year},
                                       std::chrono::month{static_cast<unsigned>(month)},
                                       std::chrono::day{static_cast<unsigned>(day)}}};
    const auto days = static_cast<double>((date - ZeroDate).count());
    const double fraction =
        static_cast<double>(hour * 3600 + minute * 60 + second) / static_cast<double>(SecondsADay);
    return {days < 0 ? days - fraction : days + fraction};
}

}  // namespace quillon
