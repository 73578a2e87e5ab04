#include "jet/engine/function_arguments.h"

namespace jet::engine {

namespace {

/// The value of the row with the smallest (First) or largest (Last) key so far. SQLite hands out
/// this memory zeroed.
struct Chosen {
    sqlite3_value* value;
    std::int64_t key;
};

template <bool Last>
void Consider(sqlite3_context* context, int, sqlite3_value** arguments) {
    auto* chosen = static_cast<Chosen*>(sqlite3_aggregate_context(context, sizeof(Chosen)));
    if (!chosen) return;
    const std::int64_t key = sqlite3_value_int64(arguments[1]);
    if (chosen->value && (Last ? key < chosen->key : key >= chosen->key)) return;
    sqlite3_value_free(chosen->value);
    chosen->value = sqlite3_value_dup(arguments[0]);
    chosen->key = key;
}

void Yield(sqlite3_context* context) {
    auto* chosen = static_cast<Chosen*>(sqlite3_aggregate_context(context, 0));
    if (!chosen || !chosen->value) return;
    sqlite3_result_value(context, chosen->value);
    sqlite3_value_free(chosen->value);
    chosen->value = nullptr;
}

}  // namespace

void RegisterAggregates(sqlite3* database) {
    constexpr int Flags = SQLITE_UTF8 | SQLITE_INNOCUOUS;
    sqlite3_create_function_v2(database, "jet_first", 2, Flags, nullptr, nullptr, Consider<false>,
                               Yield, nullptr);
    sqlite3_create_function_v2(database, "jet_last", 2, Flags, nullptr, nullptr, Consider<true>,
                               Yield, nullptr);
}

}  // namespace jet::engine
