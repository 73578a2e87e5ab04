#include "jet/engine/functions.h"

#include "jet/engine/function_arguments.h"
#include "jet/engine/text_order.h"

namespace jet::engine {

namespace {

int Collate(void*, int leftSize, const void* left, int rightSize, const void* right) {
    return CompareTexts({static_cast<const char*>(left), static_cast<std::size_t>(leftSize)},
                        {static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
}

}  // namespace

void RegisterFunctions(Sqlite& sqlite) {
    sqlite3* const database = sqlite.Handle();
    sqlite3_create_collation_v2(database, "jet", SQLITE_UTF8, nullptr, Collate, nullptr);
    RegisterTextFunctions(database);
    RegisterNumberFunctions(database);
    RegisterDateFunctions(database);
    RegisterAggregates(database);
}

}  // namespace jet::engine
