#include <chrono>
#include <ctime>

#include "jet/dialect/date_text.h"
#include "jet/engine/function_arguments.h"
#include "jet/storage/system_file.h"

namespace jet::engine {

namespace {

using dialect::DateParts;

/// The local date and time, to the second.
double Now() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    const std::tm local = storage::LocalTime(now);
    return dialect::JoinDate({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                              local.tm_min, local.tm_sec});
}

int Part(const DateParts& parts, int which) {
    switch (which) {
        case 0:
            return parts.year;
        case 1:
            return parts.month;
        case 2:
            return parts.day;
        case 3:
            return parts.hour;
        case 4:
            return parts.minute;
        default:
            return parts.second;
    }
}

void ReadDate(sqlite3_context* context, sqlite3_value** arguments) {
    if (sqlite3_value_type(arguments[0]) != SQLITE_TEXT) {
        sqlite3_result_double(context, sqlite3_value_double(arguments[0]));
    } else if (const auto days = dialect::ParseDate(TextOf(arguments[0]))) {
        sqlite3_result_double(context, *days);
    }
}

}  // namespace

void RegisterDateFunctions(sqlite3* database) {
    using Context = sqlite3_context*;
    using Values = sqlite3_value**;
    sqlite3_create_function_v2(
        database, "jet_now", 0, SQLITE_UTF8 | SQLITE_INNOCUOUS, nullptr,
        [](Context context, int, Values) { sqlite3_result_double(context, Now()); }, nullptr,
        nullptr, nullptr);
    Define(database, "jet_date", 1,
           [](Context context, Values values) { ReadDate(context, values); });
    Define(database, "jet_date_text", 1, [](Context context, Values values) {
        SetText(context, dialect::DateText(sqlite3_value_double(values[0])));
    });
    Define(database, "jet_date_part", 2, [](Context context, Values values) {
        const DateParts parts = dialect::SplitDate(sqlite3_value_double(values[1]));
        sqlite3_result_int(context, Part(parts, sqlite3_value_int(values[0])));
    });
}

}  // namespace jet::engine
