// What a table accepts, what it refuses, and that a refused change leaves no trace.
#include <cmath>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "jet/error.h"
#include "jet/storage/database_file.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

template <typename Action>
std::optional<ErrorKind> KindThrownBy(Action action) {
    try {
        action();
    } catch (const Error& error) {
        EXPECT_EQ(std::string(error.what()).back(), '.');
        return error.Kind();
    }
    return std::nullopt;
}

class TableRules : public testing::Test {
  protected:
    TableRules() {
        DatabaseFile::Create(path_, BothTables());
        file_.emplace(DatabaseFile::Open(path_, OpenMode::ReadWrite));
    }

    Table& Tracks() { return file_->OpenTable("Tracks"); }
    Table& Everything() { return file_->OpenTable("Every type"); }

    static Row Track(const std::string& title) {
        Row row(8);
        row[1] = title;
        return row;
    }

    /// A row of the other table with one value.
    Row Single(const std::string& column, const Value& value) {
        const auto& definition = Everything().Definition();
        Row row(definition.columns.size());
        row[definition.FindColumn(column).value()] = value;
        return row;
    }

    void ExpectWhole() {
        file_->Commit();
        EXPECT_EQ(FaultsOf(path_, true), "");
    }

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_ / "rules.mdb";
    std::optional<DatabaseFile> file_;
};

TEST_F(TableRules, MemosOfEveryLengthComeBack) {
    for (const std::string letter : {"x", "Ж"}) {
        for (const std::size_t length : {0U, 1U, 31U, 32U, 33U, 64U, 65U, 1024U, 1025U, 2038U,
                                         2039U, 4072U, 4076U, 4077U, 8144U, 8145U, 100000U}) {
            std::string text;
            for (std::size_t i = 0; i < length; ++i)
                text += letter;
            Row row = Track("memo");
            row[7] = text;
            const RowId id = Tracks().Insert(row).row;
            EXPECT_EQ(Tracks().Read(id)[7], Value(text)) << length;
        }
    }
    ExpectWhole();
}

TEST_F(TableRules, AMemoThatChangesGivesItsPlaceBack) {
    Row row = Track("memo");
    row[7] = std::string(100000, 'a');
    const RowId id = Tracks().Insert(row).row;
    file_->Commit();
    const auto size = std::filesystem::file_size(path_);
    for (int i = 0; i < 10; ++i) {
        const std::vector<FieldChange> changes{
            {7, std::string(100000, static_cast<char>('b' + i))}};
        Tracks().Update(id, changes);
        file_->Commit();
    }
    EXPECT_LE(std::filesystem::file_size(path_), size * 2 + 10 * PageSize);
    const std::vector<FieldChange> toNull{{7, Null{}}};
    Tracks().Update(id, toNull);
    EXPECT_TRUE(IsNull(Tracks().Read(id)[7]));
    ExpectWhole();
}

TEST_F(TableRules, AnEmptyTextIsNotNull) {
    Row row = Track("");
    row[7] = std::string();
    const RowId id = Tracks().Insert(row).row;
    const Row read = Tracks().Read(id);
    EXPECT_EQ(read[1], Value(std::string()));
    EXPECT_TRUE(IsNull(read[2]));
    EXPECT_EQ(read[7], Value(std::string()));
    ExpectWhole();
}

TEST_F(TableRules, ATextMayHaveAsManyUnitsAsItsFieldAllows) {
    std::string wide;
    for (int i = 0; i < 255; ++i)
        wide += "Ж";
    const RowId id = Tracks().Insert(Track(wide)).row;
    EXPECT_EQ(Tracks().Read(id)[1], Value(wide));
    EXPECT_EQ(KindThrownBy([&] { Tracks().Insert(Track(wide + "Ж")); }), ErrorKind::TooLong);
    EXPECT_EQ(KindThrownBy([&] { Tracks().Insert(Track(std::string(256, 'x'))); }),
              ErrorKind::TooLong);
    // A character outside the basic plane takes two units.
    std::string emoji;
    for (int i = 0; i < 128; ++i)
        emoji += "\U0001F3B5";
    EXPECT_EQ(KindThrownBy([&] { Tracks().Insert(Track(emoji)); }), ErrorKind::TooLong);
    EXPECT_EQ(Tracks().RowCount(), 1U);
    ExpectWhole();
}

TEST_F(TableRules, NumbersOutsideTheirRangeOverflow) {
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Single("Small", std::int64_t{256})); }),
              ErrorKind::Overflow);
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Single("Small", std::int64_t{-1})); }),
              ErrorKind::Overflow);
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Single("Number", std::int64_t{32768})); }),
              ErrorKind::Overflow);
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Single("Long", std::int64_t{1} << 31)); }),
              ErrorKind::Overflow);
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Single("Single", 1e39)); }),
              ErrorKind::Overflow);
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Single("Number", std::int64_t{-32768})); }),
              std::nullopt);
    EXPECT_EQ(Everything().RowCount(), 1U);
}

TEST_F(TableRules, AValueOfAnotherTypeIsATypeMismatch) {
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Single("Number", std::string("5"))); }),
              ErrorKind::TypeMismatch);
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Single("Text", std::int64_t{5})); }),
              ErrorKind::TypeMismatch);
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Single("Day", 5.0)); }),
              ErrorKind::TypeMismatch);
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Row(3)); }), ErrorKind::TypeMismatch);
    EXPECT_EQ(Everything().RowCount(), 0U);
}

TEST_F(TableRules, ARequiredFieldRefusesNull) {
    EXPECT_TRUE(Tracks().Definition().columns[1].required);
    EXPECT_FALSE(Tracks().Definition().columns[2].required);
    EXPECT_EQ(KindThrownBy([&] { Tracks().Insert(Row(8)); }), ErrorKind::Required);
    const RowId id = Tracks().Insert(Track("a title")).row;
    const std::vector<FieldChange> toNull{{1, Null{}}};
    EXPECT_EQ(KindThrownBy([&] { Tracks().Update(id, toNull); }), ErrorKind::Required);
    EXPECT_EQ(Tracks().Read(id)[1], Value(std::string("a title")));
}

TEST_F(TableRules, AnUnassignedYesNoFieldIsNo) {
    const RowId id = Tracks().Insert(Track("a title")).row;
    EXPECT_EQ(Tracks().Read(id)[5], Value(false));
}

TEST_F(TableRules, AutoNumbersCountUpAndAreNotUsedAgain) {
    EXPECT_EQ(Tracks().Insert(Track("one")).autoNumber, 1);
    const auto two = Tracks().Insert(Track("two"));
    EXPECT_EQ(two.autoNumber, 2);
    Tracks().Delete(two.row);
    EXPECT_EQ(Tracks().Insert(Track("three")).autoNumber, 3);
}

TEST_F(TableRules, AGivenAutoNumberRaisesTheCounter) {
    Row row = Track("forty");
    row[0] = std::int64_t{40};
    EXPECT_EQ(Tracks().Insert(row).autoNumber, 40);
    EXPECT_EQ(Tracks().Insert(Track("next")).autoNumber, 41);
    row[0] = std::int64_t{7};
    EXPECT_EQ(Tracks().Insert(row).autoNumber, 7);
    EXPECT_EQ(Tracks().Insert(Track("next")).autoNumber, 42);
    ExpectWhole();
}

TEST_F(TableRules, AutoNumbersEndWithAnOverflow) {
    Row row = Track("last");
    row[0] = std::int64_t{2147483647};
    Tracks().Insert(row);
    EXPECT_EQ(KindThrownBy([&] { Tracks().Insert(Track("too many")); }), ErrorKind::Overflow);
    EXPECT_EQ(Tracks().RowCount(), 1U);
}

TEST_F(TableRules, AUniqueKeyIsRefusedTheSecondTimeWithoutATrace) {
    Guid guid;
    guid.bytes[3] = 9;
    Everything().Insert(Single("Guid", guid));
    const RowId other = Everything().Insert(Single("Guid", Null{})).row;
    Everything().Insert(Single("Guid", Null{}));
    EXPECT_EQ(KindThrownBy([&] { Everything().Insert(Single("Guid", guid)); }),
              ErrorKind::Duplicate);
    const auto column = Everything().Definition().FindColumn("Guid").value();
    const std::vector<FieldChange> changes{{column, guid}};
    EXPECT_EQ(KindThrownBy([&] { Everything().Update(other, changes); }), ErrorKind::Duplicate);
    Row track = Track("x");
    track[0] = std::int64_t{1};
    Tracks().Insert(track);
    EXPECT_EQ(KindThrownBy([&] { Tracks().Insert(track); }), ErrorKind::Duplicate);
    EXPECT_EQ(Tracks().RowCount(), 1U);
    EXPECT_EQ(Tracks().Insert(Track("y")).autoNumber, 2);
    EXPECT_EQ(Everything().RowCount(), 3U);
    ExpectWhole();
}

TEST_F(TableRules, APrimaryKeyRefusesNull) {
    TableDefinition table;
    table.name = "Keyed";
    table.columns = {{.name = "Key", .type = ColumnType::Text, .size = 10}};
    table.indexes = {{.name = "PrimaryKey", .columns = {{0, true}}, .primary = true}};
    const auto path = folder_ / "keyed.mdb";
    DatabaseFile::Create(path, std::vector<TableDefinition>{table});
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    Table& keyed = file.OpenTable("KEYED");
    EXPECT_EQ(KindThrownBy([&] { keyed.Insert(Row(1)); }), ErrorKind::Required);
    keyed.Insert(Row{std::string("Abba")});
    EXPECT_EQ(KindThrownBy([&] { keyed.Insert(Row{std::string("ABBA ")}); }), ErrorKind::Duplicate);
    EXPECT_EQ(keyed.RowCount(), 1U);
}

TEST_F(TableRules, AnUpdateThatChangesNothingWritesNothing) {
    Row row = Track("same");
    row[7] = std::string(5000, 'm');
    const RowId id = Tracks().Insert(row).row;
    file_->Commit();
    const std::string before = outside::ContentOf(path_);
    const std::vector<FieldChange> same{
        {1, std::string("same")}, {5, false}, {7, std::string(5000, 'm')}};
    Tracks().Update(id, same);
    file_->Commit();
    EXPECT_EQ(outside::ContentOf(path_), before);
}

TEST_F(TableRules, AnUpdateOfAFieldWithoutIndexTouchesOnePage) {
    for (int i = 0; i < 500; ++i)
        Tracks().Insert(Track("title " + std::to_string(i)));
    const RowId id = Tracks().Insert(Track("the one")).row;
    file_->Commit();
    const std::string before = outside::ContentOf(path_);
    const std::vector<FieldChange> changes{{5, true}};
    Tracks().Update(id, changes);
    file_->Commit();
    const std::string after = outside::ContentOf(path_);
    ASSERT_EQ(before.size(), after.size());
    std::vector<PageNumber> changed;
    for (std::size_t at = 0; at < after.size(); at += PageSize) {
        if (before.compare(at, PageSize, after, at, PageSize) != 0) {
            changed.push_back(static_cast<PageNumber>(at / PageSize));
        }
    }
    // The header counts the commit.
    EXPECT_EQ(changed, (std::vector<PageNumber>{0, id.page}));
}

TEST_F(TableRules, RowsThatGrowKeepTheirIds) {
    std::vector<RowId> ids;
    for (int i = 0; i < 200; ++i)
        ids.push_back(Tracks().Insert(Track(std::to_string(i))).row);
    for (const std::size_t length : {20U, 120U, 255U, 3U, 255U, 0U, 200U}) {
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const std::vector<FieldChange> changes{
                {1, std::string(length, 'g')},
                {2, std::to_string(i) + std::string(length / 2, 'a')}};
            Tracks().Update(ids[i], changes);
        }
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const Row row = Tracks().Read(ids[i]);
            EXPECT_EQ(row[0], Value(std::int64_t{static_cast<int>(i) + 1}));
            EXPECT_EQ(row[1], Value(std::string(length, 'g')));
        }
        ExpectWhole();
    }
    EXPECT_EQ(RowsOf(Tracks()).size(), ids.size());
}

TEST_F(TableRules, ARowThatIsTooLongIsRefused) {
    TableDefinition table;
    table.name = "Wide";
    for (int i = 0; i < 20; ++i) {
        table.columns.push_back(
            {.name = "T" + std::to_string(i), .type = ColumnType::Text, .size = 255});
    }
    table.columns.push_back({.name = "M", .type = ColumnType::Memo});
    const auto path = folder_ / "wide.mdb";
    DatabaseFile::Create(path, std::vector<TableDefinition>{table});
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    Table& wide = file.OpenTable("Wide");
    Row row(21);
    row[20] = std::string(60, 'm');
    // 15 texts of 257 bytes and the rest leave no room for the memo in the row.
    for (std::size_t i = 0; i < 15; ++i)
        row[i] = std::string(255, 'w');
    row[15] = std::string(60, 'w');
    const RowId id = wide.Insert(row).row;
    EXPECT_EQ(wide.Read(id), row);
    for (std::size_t i = 15; i < 20; ++i)
        row[i] = std::string(255, 'w');
    EXPECT_EQ(KindThrownBy([&] { wide.Insert(row); }), ErrorKind::TooLong);
    const std::vector<FieldChange> changes{{16, std::string(255, 'x')}};
    EXPECT_EQ(KindThrownBy([&] { wide.Update(id, changes); }), ErrorKind::TooLong);
    EXPECT_EQ(wide.RowCount(), 1U);
    file.Commit();
    EXPECT_EQ(FaultsOf(path, true), "");
}

TEST_F(TableRules, ADeletedRowIsNotFound) {
    const RowId id = Tracks().Insert(Track("gone")).row;
    Tracks().Delete(id);
    EXPECT_EQ(KindThrownBy([&] { Tracks().Read(id); }), ErrorKind::NotFound);
    EXPECT_EQ(KindThrownBy([&] { Tracks().Delete(id); }), ErrorKind::NotFound);
    const std::vector<FieldChange> changes{{5, true}};
    EXPECT_EQ(KindThrownBy([&] { Tracks().Update(id, changes); }), ErrorKind::NotFound);
}

TEST_F(TableRules, ReadOnlyRefusesChanges) {
    const RowId id = Tracks().Insert(Track("fixed")).row;
    file_->Commit();
    const std::string before = outside::ContentOf(path_);
    auto reader = DatabaseFile::Open(path_, OpenMode::ReadOnly);
    Table& table = reader.OpenTable("Tracks");
    EXPECT_EQ(KindThrownBy([&] { table.Insert(Track("new")); }), ErrorKind::ReadOnly);
    EXPECT_EQ(KindThrownBy([&] { table.Delete(id); }), ErrorKind::ReadOnly);
    EXPECT_EQ(table.Read(id)[1], Value(std::string("fixed")));
    reader.Commit();
    EXPECT_EQ(outside::ContentOf(path_), before);
}

TEST(ALargeFile, KeepsItsMapsAndRows) {
    const TemporaryFolder folder;
    const auto path = folder / "large.mdb";
    DatabaseFile::Create(path, std::vector<TableDefinition>{TracksTable()});
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    Table& table = file.OpenTable("Tracks");
    std::vector<RowId> ids;
    for (int i = 0; i < 3000; ++i) {
        Row row(8);
        row[1] = "title " + std::to_string(i * 7919 % 3000);
        row[7] = std::string(i % 2 == 0 ? 3000 : 100, 'n');
        ids.push_back(table.Insert(row).row);
        file.CommitIfDue();
    }
    file.Commit();
    EXPECT_GT(std::filesystem::file_size(path), 1000 * PageSize);
    EXPECT_EQ(FaultsOf(path, true), "");
    for (std::size_t i = 0; i < ids.size(); i += 2)
        table.Delete(ids[i]);
    file.Commit();
    EXPECT_EQ(FaultsOf(path, true), "");
    EXPECT_EQ(RowsOf(table).size(), ids.size() / 2);
}

TEST(AHugeFile, ChangesToMapsOfMapsBeyond32736Pages) {
    const TemporaryFolder folder;
    const auto path = folder / "huge.mdb";
    TableDefinition definition;
    definition.name = "Blobs";
    definition.columns = {{.name = "ID", .type = ColumnType::Long, .autoNumber = true},
                          {.name = "Blob", .type = ColumnType::Ole}};
    definition.indexes = {{.name = "PrimaryKey", .columns = {{0, true}}, .primary = true}};
    DatabaseFile::Create(path, std::vector<TableDefinition>{definition});
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    Table& table = file.OpenTable("Blobs");
    const Bytes blob(4072 * 500, 0x5A);
    std::vector<RowId> ids;
    for (int i = 0; i < 70; ++i) {
        ids.push_back(table.Insert(Row{Null{}, blob}).row);
        file.CommitIfDue();
    }
    file.Commit();
    EXPECT_GT(std::filesystem::file_size(path), std::uintmax_t{34000} * PageSize);
    EXPECT_EQ(FaultsOf(path, true), "");
    for (std::size_t i = 0; i < ids.size(); i += 3)
        table.Delete(ids[i]);
    for (std::size_t i = 0; i < ids.size(); i += 3)
        table.Insert(Row{Null{}, blob});
    file.Commit();
    EXPECT_EQ(FaultsOf(path, true), "");
    EXPECT_EQ(RowsOf(table).size(), ids.size());
}

}  // namespace

}  // namespace jet::storage::test
