// Many rows at once: which pages are written for them.
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>

#include "jet/error.h"
#include "jet/storage/database_file.h"
#include "tests/jet/engine/counting_files.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

constexpr std::size_t ManyRows = 500;

class ManyRowsAtOnce : public testing::Test {
  protected:
    ManyRowsAtOnce() {
        DatabaseFile::Create(path_, BothTables());
        file_.emplace(DatabaseFile::Open(path_, OpenMode::ReadWrite, files_));
    }

    Table& TheTable() { return file_->OpenTable("Every type"); }

    void AddRows() {
        RandomRows random(1);
        const std::size_t before = TheTable().RowCount();
        while (TheTable().RowCount() < before + ManyRows) {
            try {
                TheTable().Insert(random.RowFor(TheTable().Definition()));
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), ErrorKind::Duplicate) << error.what();
            }
        }
    }

    std::size_t PagesWrittenByCommit() {
        const std::size_t before = files_->PagesWritten();
        file_->Commit();
        return files_->PagesWritten() - before;
    }

    std::size_t PagesOfFile() const { return std::filesystem::file_size(path_) / PageSize; }

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_ / "bulk.mdb";
    std::shared_ptr<CountingFiles> files_ = std::make_shared<CountingFiles>();
    std::optional<DatabaseFile> file_;
};

TEST_F(ManyRowsAtOnce, AreWrittenWithEachPageOnce) {
    const std::size_t before = PagesOfFile();
    AddRows();
    EXPECT_EQ(files_->PagesWritten(), 0U) << "before they are committed";
    const std::size_t written = PagesWrittenByCommit();
    const std::size_t after = PagesOfFile();
    EXPECT_GE(written, after - before);
    EXPECT_LE(written, after);
    EXPECT_EQ(PagesWrittenByCommit(), 0U) << "nothing has changed since";
}

TEST_F(ManyRowsAtOnce, GoWithoutAnyOfTheirPagesBeingWritten) {
    AddRows();
    file_->Commit();
    AddRows();  // these have index entries that wait
    const std::size_t full = PagesOfFile();
    TheTable().DeleteAll();
    EXPECT_TRUE(RowsOf(TheTable()).empty());
    EXPECT_EQ(TheTable().RowCount(), 0U);
    file_->Commit();
    AddRows();
    EXPECT_EQ(RowsOf(TheTable()).size(), ManyRows);
    file_->Commit();
    TheTable().DeleteAll();
    // Definition, maps, the header, and a root for each index.
    EXPECT_LE(PagesWrittenByCommit(), 30U);
    EXPECT_EQ(FaultsOf(path_, true), "");
    AddRows();
    file_->Commit();
    EXPECT_LE(PagesOfFile(), 2 * full) << "room is not used again";
    EXPECT_EQ(FaultsOf(path_, true), "");
}

TEST_F(ManyRowsAtOnce, AreThereAgainWhereTheirRemovalIsNotCommitted) {
    AddRows();
    file_->Commit();
    const auto rows = RowsOf(TheTable());
    TheTable().DeleteAll();
    file_->Revert();
    EXPECT_EQ(RowsOf(TheTable()), rows);
    EXPECT_EQ(FaultsOf(path_, true), "");
}

}  // namespace

}  // namespace jet::storage::test
