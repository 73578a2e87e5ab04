// Rows found by the first column of an index.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>

#include "jet/storage/database_file.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

constexpr std::size_t Number = 0, Backwards = 1, Plain = 2, Label = 3;

TableDefinition Shelf() {
    const auto column = [](const std::string& name, ColumnType type, std::uint16_t size = 0) {
        ColumnDefinition definition;
        definition.name = name;
        definition.type = type;
        definition.size = size;
        return definition;
    };
    const auto index = [](const std::string& name, std::vector<IndexColumn> columns) {
        IndexDefinition definition;
        definition.name = name;
        definition.columns = std::move(columns);
        return definition;
    };
    return {
        .name = "Shelf",
        .columns = {column("Number", ColumnType::Long), column("Backwards", ColumnType::Integer),
                    column("Plain", ColumnType::Long), column("Label", ColumnType::Text, 100)},
        .indexes = {index("Two", {{Number, true}, {Label, true}}),
                    index("Down", {{Backwards, false}}), index("Labels", {{Label, true}})}};
}

TEST(FindByIndex, FindsTheRowsOfAScan) {
    const TemporaryFolder folder;
    const auto path = folder / "shelf.mdb";
    DatabaseFile::Create(path, std::vector{Shelf()});
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    Table& table = file.OpenTable("Shelf");
    constexpr std::int64_t RowCount = 3000;
    for (std::int64_t i = 0; i < RowCount; ++i) {
        // Many pages of one number, and some of their own.
        const std::int64_t number = i % 3 == 0 ? 7 : i * 7919 % 1000 - 500;
        table.Insert(
            Row{i % 50 == 0 ? Value(Null{}) : Value(number), Value(number % 100), Value(i),
                Value("label " + std::string(60, 'x') + std::to_string(i * 31 % RowCount))});
    }
    std::map<std::int64_t, std::vector<RowId>> byNumber, byBackwards;
    table.Scan([&](RowId id, const Row& row) {
        if (const auto* number = std::get_if<std::int64_t>(&row[Number]))
            byNumber[*number].push_back(id);
        byBackwards[std::get<std::int64_t>(row[Backwards])].push_back(id);
    });
    const auto found = [&](std::size_t column, std::int64_t number) {
        auto rows = table.FindByIndex(column, Value(number), RowCount);
        std::sort(rows->begin(), rows->end());
        return *rows;
    };
    for (std::int64_t number = -510; number < 510; ++number) {
        EXPECT_EQ(found(Number, number), byNumber[number]) << number;
        if (number > -110 && number < 110) {
            EXPECT_EQ(found(Backwards, number), byBackwards[number]) << number;
        }
    }
    EXPECT_GT(byNumber[7].size(), 900U);
    for (const std::int64_t extreme : {-2147483648LL, 2147483647LL})
        EXPECT_TRUE(found(Number, extreme).empty());
    EXPECT_EQ(table.FindByIndex(Label, Value("LABEL " + std::string(60, 'X') + "5"), 9)->size(),
              1U);

    const std::size_t many = byNumber[7].size();
    EXPECT_TRUE(table.FindByIndex(Number, Value(std::int64_t{7}), many));
    EXPECT_FALSE(table.FindByIndex(Number, Value(std::int64_t{7}), many - 1));
    EXPECT_FALSE(table.FindByIndex(Plain, Value(std::int64_t{7}), RowCount)) << "there is no index";
}

TEST(FindByIndex, FollowsChangesThatAreNotCommitted) {
    const TemporaryFolder folder;
    const auto path = folder / "shelf.mdb";
    DatabaseFile::Create(path, std::vector{Shelf()});
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    Table& table = file.OpenTable("Shelf");
    const Value seven = std::int64_t{7}, eight = std::int64_t{8};
    EXPECT_TRUE(table.FindByIndex(Number, seven, 9)->empty());
    const RowId row = table.Insert(Row{seven, eight, Null{}, Null{}}).row;
    EXPECT_EQ(*table.FindByIndex(Number, seven, 9), std::vector{row});
    table.Update(row, std::vector<FieldChange>{{Number, eight}});
    EXPECT_TRUE(table.FindByIndex(Number, seven, 9)->empty());
    EXPECT_EQ(*table.FindByIndex(Number, eight, 9), std::vector{row});
    table.Delete(row);
    EXPECT_TRUE(table.FindByIndex(Number, eight, 9)->empty());
}

TEST(Discarding, LeavesTheFileAsTheLastCommitLeftIt) {
    const TemporaryFolder folder;
    const auto path = folder / "shelf.mdb";
    DatabaseFile::Create(path, std::vector{Shelf()});
    {
        auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
        Table& table = file.OpenTable("Shelf");
        table.Insert(Row(4));
        file.Commit();
        table.Insert(Row(4));
        file.Discard();
    }
    EXPECT_EQ(FaultsOf(path, true), "");
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    EXPECT_EQ(file.OpenTable("Shelf").RowCount(), 1U);
}

}  // namespace

}  // namespace jet::storage::test
