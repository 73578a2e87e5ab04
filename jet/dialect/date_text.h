#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace jet::dialect {

/// Reads "11/15/2026 5:38:55 AM", "2026-11-15 05:38:55", "11/15/2026" or "17:05" as an OLE date.
/// Months come first unless the first number has four digits; where the first cannot be a month,
/// day and month change places. Two-digit years are 1930 to 2029. Empty when the text is no date.
std::optional<double> ParseDate(std::string_view text);

/// "11/15/2026 5:38:55 AM"; without the time where that is midnight, without the date where that is
/// 30 December 1899.
std::string DateText(double days);

/// Year, month and so on of an OLE date, rounded to the second.
struct DateParts {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};
DateParts SplitDate(double days);
double JoinDate(const DateParts& parts);

}  // namespace jet::dialect
