#include "tests/jet/storage/schemas.h"

namespace jet::storage::test {

TableDefinition EveryTypeTable() {
    TableDefinition table;
    table.name = "Every type";
    table.columns = {{.name = "Yes", .type = ColumnType::Boolean},
                     {.name = "Small", .type = ColumnType::Byte},
                     {.name = "Number", .type = ColumnType::Integer},
                     {.name = "Long", .type = ColumnType::Long},
                     {.name = "Price", .type = ColumnType::Currency},
                     {.name = "Single", .type = ColumnType::Single},
                     {.name = "Double", .type = ColumnType::Double},
                     {.name = "Day", .type = ColumnType::Date},
                     {.name = "Raw", .type = ColumnType::Binary, .size = 100},
                     {.name = "Text", .type = ColumnType::Text, .size = 80},
                     {.name = "Picture", .type = ColumnType::Ole},
                     {.name = "Memo", .type = ColumnType::Memo},
                     {.name = "Guid", .type = ColumnType::Guid},
                     {.name = "Decimal", .type = ColumnType::Decimal, .precision = 18, .scale = 3},
                     {.name = "Second memo", .type = ColumnType::Memo}};
    table.indexes = {{.name = "By text", .columns = {{9, true}}},
                     {.name = "By guid", .columns = {{12, true}}, .unique = true},
                     {.name = "Down", .columns = {{3, false}}},
                     {.name = "Several", .columns = {{0, true}, {7, false}, {9, false}}},
                     {.name = "Without Nulls", .columns = {{13, true}}, .ignoreNulls = true},
                     {.name = "By raw", .columns = {{8, true}}}};
    return table;
}

TableDefinition TracksTable() {
    TableDefinition table;
    table.name = "Tracks";
    table.columns = {{.name = "ID", .type = ColumnType::Long, .autoNumber = true},
                     {.name = "Title", .type = ColumnType::Text, .size = 255, .required = true},
                     {.name = "Artist", .type = ColumnType::Text, .size = 255},
                     {.name = "CDJID", .type = ColumnType::Text, .size = 20},
                     {.name = "Track", .type = ColumnType::Integer},
                     {.name = "Valid", .type = ColumnType::Boolean},
                     {.name = "Added", .type = ColumnType::Date},
                     {.name = "Notes", .type = ColumnType::Memo}};
    table.indexes = {{.name = "PrimaryKey", .columns = {{0, true}}, .primary = true},
                     {.name = "Title", .columns = {{1, true}}},
                     {.name = "Artist", .columns = {{2, true}}},
                     {.name = "CDJID", .columns = {{3, true}}}};
    return table;
}

std::vector<TableDefinition> BothTables() {
    return {EveryTypeTable(), TracksTable()};
}

}  // namespace jet::storage::test
