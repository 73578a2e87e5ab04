#include <cmath>

#include "jet/engine/function_arguments.h"
#include "jet/engine/number_text.h"

namespace jet::engine {

namespace {

/// Whole results are integers, as far as SQLite's integers reach.
void SetNumber(sqlite3_context* context, double number) {
    if (std::abs(number) < 9e15 && std::trunc(number) == number) {
        sqlite3_result_int64(context, static_cast<std::int64_t>(number));
    } else if (std::isfinite(number)) {
        sqlite3_result_double(context, number);
    }
}

double Number(sqlite3_value* value) {
    return sqlite3_value_double(value);
}

void Round(sqlite3_context* context, sqlite3_value** arguments) {
    const double scale = std::pow(10.0, Number(arguments[1]));
    SetNumber(context, RoundHalfEven(Number(arguments[0]) * scale) / scale);
}

}  // namespace

void RegisterNumberFunctions(sqlite3* database) {
    using Context = sqlite3_context*;
    using Values = sqlite3_value**;
    Define(database, "jet_value", 1, [](Context context, Values values) {
        SetNumber(context, LeadingNumber(TextOf(values[0])));
    });
    Define(database, "jet_floor", 1, [](Context context, Values values) {
        SetNumber(context, std::floor(Number(values[0])));
    });
    Define(database, "jet_truncate", 1, [](Context context, Values values) {
        SetNumber(context, std::trunc(Number(values[0])));
    });
    Define(database, "jet_sign", 1, [](Context context, Values values) {
        const double number = Number(values[0]);
        SetNumber(context, number < 0 ? -1 : number > 0 ? 1 : 0);
    });
    Define(database, "jet_power", 2, [](Context context, Values values) {
        SetNumber(context, std::pow(Number(values[0]), Number(values[1])));
    });
    Define(database, "jet_round", 2,
           [](Context context, Values values) { Round(context, values); });
    Define(database, "jet_modulo", 2, [](Context context, Values values) {
        SetNumber(context,
                  std::fmod(RoundHalfEven(Number(values[0])), RoundHalfEven(Number(values[1]))));
    });
    Define(database, "jet_whole_quotient", 2, [](Context context, Values values) {
        SetNumber(context,
                  std::trunc(RoundHalfEven(Number(values[0])) / RoundHalfEven(Number(values[1]))));
    });
}

}  // namespace jet::engine
