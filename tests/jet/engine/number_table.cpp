#include "tests/jet/engine/number_table.h"

#include <array>
#include <random>
#include <vector>

namespace jet::testing {

namespace {

IndexDefinition IndexOver(const std::string& name, std::vector<IndexColumn> columns) {
    IndexDefinition index;
    index.name = name;
    index.columns = std::move(columns);
    return index;
}

TableDefinition Definition() {
    ColumnDefinition id = Field("ID", ColumnType::Long);
    id.autoNumber = true;
    IndexDefinition key = IndexOver("PrimaryKey", {{0, true}});
    key.primary = key.unique = key.required = true;
    IndexDefinition withoutNulls = IndexOver("BySmall", {{1, true}});
    withoutNulls.ignoreNulls = true;
    return {.name = "T",
            .columns = {id, Field("Small", ColumnType::Byte), Field("Middle", ColumnType::Integer),
                        Field("Large", ColumnType::Long), Field("Plain", ColumnType::Long),
                        Field("Real", ColumnType::Double), Text("Name")},
            .indexes = {key, withoutNulls, IndexOver("ByMiddle", {{2, false}, {6, true}}),
                        IndexOver("ByLarge", {{3, true}, {1, true}}),
                        IndexOver("ByReal", {{5, true}}), IndexOver("ByName", {{6, true}})}};
}

}  // namespace

NumberTable::NumberTable(int rows) {
    Database::Create(path_, std::array{Definition()});
    Database database = Open();
    std::mt19937 random(7);
    const auto pick = [&random](const std::vector<Value>& values) {
        return values[random() % values.size()];
    };
    const auto whole = [](std::int64_t number) { return Value(number); };
    // Few enough rows of a number for the index to be used, often more than one.
    const auto seldom = [&](const std::vector<Value>& values, std::int64_t from, std::int64_t to) {
        const std::int64_t any = from + static_cast<std::int64_t>(random()) % (to - from + 1);
        return random() % 4 == 0 ? pick(values) : whole(any);
    };
    for (int i = 0; i < rows; ++i) {
        const std::array fields{
            Database::Field{
                "Small",
                seldom({whole(0), whole(1), whole(5), whole(5), whole(255), Null{}}, 10, 200)},
            Database::Field{"Middle", seldom({whole(-32768), whole(-5), whole(0), whole(5),
                                              whole(32767), Null{}},
                                             -200, 200)},
            Database::Field{"Large", seldom({whole(-2147483648), whole(-5), whole(0), whole(5),
                                             whole(40000), whole(2147483647), Null{}},
                                            -700, 700)},
            Database::Field{"Plain", whole(static_cast<std::int64_t>(random() % 7))},
            Database::Field{"Real",
                            pick({Value(0.0), Value(-0.0), Value(5.0), Value(5.5), Null{}})},
            Database::Field{"Name", pick({Value("5"), Value("five"), Value("FIVE"), Value("5.5"),
                                          Value(""), Null{}})}};
        database.Insert("T", fields);
    }
}

std::string Outcome(Database& database, const std::string& query) {
    try {
        return Rows(database, query);
    } catch (const Error& error) {
        return error.what();
    }
}

}  // namespace jet::testing
