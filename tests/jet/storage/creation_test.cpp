// New files, and what independent readers see in them.
#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "jet/error.h"
#include "jet/storage/database_file.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

void ExpectSame(const TableDefinition& read, const TableDefinition& wanted) {
    EXPECT_EQ(read.name, wanted.name);
    ASSERT_EQ(read.columns.size(), wanted.columns.size());
    for (std::size_t i = 0; i < wanted.columns.size(); ++i) {
        const ColumnDefinition &a = read.columns[i], &b = wanted.columns[i];
        EXPECT_EQ(a.name, b.name);
        EXPECT_EQ(a.type, b.type) << b.name;
        EXPECT_EQ(a.size, b.size) << b.name;
        EXPECT_EQ(a.autoNumber, b.autoNumber) << b.name;
        EXPECT_EQ(a.required, b.required) << b.name;
        EXPECT_EQ(a.precision, b.precision) << b.name;
        EXPECT_EQ(a.scale, b.scale) << b.name;
    }
    ASSERT_EQ(read.indexes.size(), wanted.indexes.size());
    for (const IndexDefinition& a : wanted.indexes) {
        bool found = false;
        for (const IndexDefinition& b : read.indexes) {
            if (a.name != b.name) continue;
            found = true;
            EXPECT_EQ(b.unique, a.unique || a.primary);
            EXPECT_EQ(b.required, a.required || a.primary);
            EXPECT_EQ(b.primary, a.primary);
            EXPECT_EQ(b.ignoreNulls, a.ignoreNulls);
            ASSERT_EQ(a.columns.size(), b.columns.size());
            for (std::size_t i = 0; i < a.columns.size(); ++i) {
                EXPECT_EQ(a.columns[i].column, b.columns[i].column);
                EXPECT_EQ(a.columns[i].ascending, b.columns[i].ascending);
            }
        }
        EXPECT_TRUE(found) << a.name;
    }
}

std::vector<std::string> SortedLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

TEST(ANewFile, HasTheTablesThatWereWanted) {
    const TemporaryFolder folder;
    const auto path = folder / "new.mdb";
    DatabaseFile::Create(path, BothTables());
    auto file = DatabaseFile::Open(path, OpenMode::ReadOnly);
    EXPECT_EQ(file.TableNames(), (std::vector<std::string>{"Every type", "Tracks"}));
    for (const TableDefinition& wanted : BothTables()) {
        const Table& table = file.OpenTable(wanted.name);
        ExpectSame(table.Definition(), wanted);
        EXPECT_EQ(table.RowCount(), 0U);
        EXPECT_EQ(table.ReadOnlyReason(), std::nullopt);
    }
    EXPECT_EQ(&file.OpenTable("tracks"), &file.OpenTable("TRACKS"));
    EXPECT_THROW(file.OpenTable("Trucks"), Error);
    EXPECT_THROW(file.OpenTable("MSysObjects"), Error);
    EXPECT_EQ(FaultsOf(path, true), "");
}

TEST(ANewFile, MayHaveNoTables) {
    const TemporaryFolder folder;
    const auto path = folder / "none.mdb";
    DatabaseFile::Create(path, {});
    EXPECT_EQ(std::filesystem::file_size(path), 16 * PageSize);
    EXPECT_TRUE(DatabaseFile::Open(path, OpenMode::ReadWrite).TableNames().empty());
    EXPECT_EQ(FaultsOf(path, true), "");
}

TEST(ANewFile, MayHaveDefinitionsOfSeveralPagesAndManyMaps) {
    TableDefinition table;
    table.name = "Many";
    for (int i = 0; i < 255; ++i) {
        table.columns.push_back({.name = "A column with a name of some length " + std::to_string(i),
                                 .type = i % 4 == 0 ? ColumnType::Memo : ColumnType::Boolean});
    }
    for (std::size_t i = 1; i < 32; ++i) {
        table.indexes.push_back({.name = "Index " + std::to_string(i),
                                 .columns = {{i * 4 + 1, true}, {i * 4 + 2, false}}});
    }
    const TemporaryFolder folder;
    const auto path = folder / "many.mdb";
    DatabaseFile::Create(path, std::vector<TableDefinition>{table});
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    ExpectSame(file.OpenTable("Many").Definition(), table);
    Row row(255);
    for (std::size_t i = 0; i < row.size(); ++i) {
        row[i] = i % 4 == 0 ? Value(std::string(20, 'm')) : Value(i % 3 == 0);
    }
    const RowId id = file.OpenTable("Many").Insert(row).row;
    EXPECT_EQ(file.OpenTable("Many").Read(id), row);
    file.Commit();
    EXPECT_EQ(FaultsOf(path, true), "");
}

TEST(ANewFile, IndexesOfTheSameFieldsShareOneTree) {
    TableDefinition table;
    table.name = "Shared";
    table.columns = {{.name = "A", .type = ColumnType::Long}};
    table.indexes = {{.name = "Z", .columns = {{0, true}}}, {.name = "B", .columns = {{0, true}}}};
    const TemporaryFolder folder;
    const auto path = folder / "shared.mdb";
    DatabaseFile::Create(path, std::vector<TableDefinition>{table});
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    const auto& indexes = file.OpenTable("Shared").Definition().indexes;
    ASSERT_EQ(indexes.size(), 2U);
    EXPECT_EQ(indexes[0].name, "B");
    file.OpenTable("Shared").Insert(Row{std::int64_t{5}});
    file.Commit();
    EXPECT_EQ(FaultsOf(path, true), "");
}

TEST(ANewFile, IsReadAlikeByAnotherProgram) {
    TableDefinition table;
    table.name = "Plain";
    table.columns = {{.name = "ID", .type = ColumnType::Long, .autoNumber = true},
                     {.name = "Name", .type = ColumnType::Text, .size = 50},
                     {.name = "Notes", .type = ColumnType::Memo},
                     {.name = "Valid", .type = ColumnType::Boolean}};
    table.indexes = {{.name = "PrimaryKey", .columns = {{0, true}}, .primary = true}};
    const TemporaryFolder folder;
    const auto path = folder / "plain.mdb";
    DatabaseFile::Create(path, std::vector<TableDefinition>{table});
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    std::string expected = "ID,Name,Notes,Valid\n";
    const RandomRows random(2);
    std::vector<RowId> ids;
    for (int i = 1; i <= 300; ++i) {
        ids.push_back(file.OpenTable("Plain").Insert(Row{Null{}, Null{}, Null{}, false}).row);
    }
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const std::string name = "Träck " + std::to_string(i);
        const std::string notes(i * 37 % 9000 + 1, 'n');
        const std::vector<FieldChange> changes{{1, name}, {2, notes}, {3, i % 2 == 0}};
        file.OpenTable("Plain").Update(ids[i], changes);
        expected += std::to_string(i + 1) + ",\"" + name + "\",\"" + notes + "\"," +
                    (i % 2 == 0 ? "1" : "0") + "\n";
    }
    file.Commit();
    // That program lists a row that has moved where its data lies now.
    const auto exported = SortedLines(OutputOf("mdb-export " + path.string() + " Plain"));
    EXPECT_TRUE(exported == SortedLines(expected)) << exported.size() << " lines";
    EXPECT_EQ(OutputOf("mdb-tables -1 " + path.string()), "Plain\n");
}

TEST(ANewTable, IsRefusedWhereTheFormatCannotHoldIt) {
    const TemporaryFolder folder;
    const auto refused = [&](auto change) {
        TableDefinition table = TracksTable();
        change(table);
        try {
            DatabaseFile::Create(folder / "x.mdb", std::vector<TableDefinition>{table});
            return false;
        } catch (const Error& error) {
            return error.Kind() == ErrorKind::NotSupported;
        }
    };
    EXPECT_TRUE(refused([](auto& table) { table.name = ""; }));
    EXPECT_TRUE(refused([](auto& table) { table.name = "a.b"; }));
    EXPECT_TRUE(refused([](auto& table) { table.name = std::string(65, 'n'); }));
    EXPECT_TRUE(refused([](auto& table) { table.columns.clear(); }));
    EXPECT_TRUE(refused([](auto& table) { table.columns[1].name = "artist"; }));
    EXPECT_TRUE(refused([](auto& table) { table.columns[1].size = 256; }));
    EXPECT_TRUE(refused([](auto& table) { table.columns[1].size = 0; }));
    EXPECT_TRUE(refused([](auto& table) { table.columns[4].autoNumber = true; }));
    EXPECT_TRUE(refused([](auto& table) { table.indexes[1].columns[0].column = 8; }));
    EXPECT_TRUE(refused([](auto& table) { table.indexes[1].columns.clear(); }));
    EXPECT_TRUE(refused([](auto& table) { table.indexes[1].name = "ARTIST"; }));
    EXPECT_FALSE(refused([](auto&) {}));
}

}  // namespace

}  // namespace jet::storage::test
