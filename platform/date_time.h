#pragma once

#include <compare>
#include <string>

namespace quillon {

/// A local date and time as the database stores it: days since 30 December 1899, the fraction is
/// the time of day and counts forward below zero too (-1.25 is 29 December, 06:00). The default
/// value is the zero date.
struct DateTime {
    double days = 0;
    auto operator<=>(const DateTime&) const = default;
};

/// The system's default text form, month/day/year and twelve hours: "11/15/2026 5:38:55 AM". As in
/// the classic runtime, midnight shows the date alone and the zero date the time alone. Failure:
/// Overflow outside the years 100 to 9999.
std::string DateTimeText(DateTime time);

/// The host log's form: "2026-11-21 07:13:05". Failure: Overflow as above.
std::string SortableDateTimeText(DateTime time);

/// Days for a civil date and time of day (proleptic Gregorian; month and day from 1).
DateTime MakeDateTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

}  // namespace quillon
