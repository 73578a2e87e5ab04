#pragma once

#include <cstdint>
#include <sqlite3.h>
#include <string_view>

namespace jet::engine {

inline bool IsNull(sqlite3_value* value) {
    return sqlite3_value_type(value) == SQLITE_NULL;
}

inline std::string_view TextOf(sqlite3_value* value) {
    const void* data = sqlite3_value_text(value);
    return {static_cast<const char*>(data), static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

inline void SetText(sqlite3_context* context, std::string_view text) {
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

/// A function of SQLite: one overload of this shape each. Null in any argument gives Null.
using ScalarFunction = void (*)(sqlite3_context*, int, sqlite3_value**);

inline bool AnyNull(int count, sqlite3_value** arguments) {
    for (int i = 0; i < count; ++i)
        if (IsNull(arguments[i])) return true;
    return false;
}

/// Defines a scalar function that is never called with a Null.
template <typename Body>
void Define(sqlite3* database, const char* name, int arguments, Body) {
    // The body is a captureless lambda, made anew for each call: SQLite wants a plain function.
    const ScalarFunction call = [](sqlite3_context* context, int count, sqlite3_value** values) {
        if (AnyNull(count, values)) return;
        Body{}(context, values);
    };
    sqlite3_create_function_v2(database, name, arguments,
                               SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr, call,
                               nullptr, nullptr, nullptr);
}

/// The text, number and date functions, and the aggregates, each defined in a file of its own.
void RegisterTextFunctions(sqlite3* database);
void RegisterNumberFunctions(sqlite3* database);
void RegisterDateFunctions(sqlite3* database);
void RegisterAggregates(sqlite3* database);

}  // namespace jet::engine
