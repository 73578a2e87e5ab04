// Tables that can be read but not changed say why.
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "jet/error.h"
#include "jet/storage/catalog_writer.h"
#include "jet/storage/database_file.h"
#include "jet/storage/pager.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

constexpr PageNumber FirstUserTable = 16;
constexpr std::size_t Columns = 0x3F + 4 * 12, ColumnSize = 25;

class ReadOnlyTables : public testing::Test {
  protected:
    ReadOnlyTables() {
        DatabaseFile::Create(path_, std::vector<TableDefinition>{TracksTable()});
        auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite);
        ModelledTable model(file.OpenTable("Tracks"), 1);
        for (int i = 0; i < 20; ++i)
            model.InsertOne();
        rows_ = model.Rows();
    }

    void Patch(std::size_t offset, char byte) {
        std::string content = outside::ContentOf(path_);
        content[FirstUserTable * PageSize + offset] = byte;
        WriteFile(path_, content);
    }

    void ExpectReadable(const std::string& reason) {
        auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite);
        Table& table = file.OpenTable("Tracks");
        EXPECT_NE(table.ReadOnlyReason().value_or("").find(reason), std::string::npos)
            << table.ReadOnlyReason().value_or("none");
        const auto rows = RowsOf(table);
        EXPECT_EQ(rows.size(), rows_.size());
        try {
            table.Delete(rows.begin()->first);
            ADD_FAILURE() << "deleted";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::NotSupported);
            EXPECT_NE(std::string(error.what()).find(reason), std::string::npos);
        }
        EXPECT_EQ(RowsOf(table), rows);
    }

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_ / "t.mdb";
    std::map<RowId, Row> rows_;
};

TEST_F(ReadOnlyTables, WithAnIndexInAnUnknownSortOrder) {
    constexpr std::size_t Title = 1, VersionInColumn = 14;
    Patch(Columns + Title * ColumnSize + VersionInColumn, 1);
    ExpectReadable("sort order");
}

TEST_F(ReadOnlyTables, WithAFieldOfAnUnknownType) {
    constexpr std::size_t Added = 6;
    Patch(Columns + Added * ColumnSize, 0x11);
    ExpectReadable("unknown type 17");
}

TEST_F(ReadOnlyTables, ThatAreLinkedAreNotListedButExplained) {
    {
        Pager pages(RealFileSystem(), path_, true);
        constexpr std::int16_t Linked = 6;
        CatalogWriter(pages).AddObject({.id = -2147483647,
                                        .parent = 0x0F000001,
                                        .name = "Elsewhere",
                                        .type = Linked,
                                        .flags = 0,
                                        .owner = Bytes{0x03, 0x01},
                                        .properties = {}});
        pages.Commit();
    }
    auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite);
    EXPECT_EQ(file.TableNames(), std::vector<std::string>{"Tracks"});
    Table& table = file.OpenTable("elsewhere");
    EXPECT_NE(table.ReadOnlyReason().value_or("").find("linked"), std::string::npos);
    EXPECT_TRUE(table.Definition().columns.empty());
    EXPECT_THROW(table.Scan([](RowId, Row&&) {}), Error);
    EXPECT_THROW(table.Insert({}), Error);
}

}  // namespace

}  // namespace jet::storage::test
