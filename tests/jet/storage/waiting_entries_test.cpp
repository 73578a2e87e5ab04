// New rows' index entries wait in memory for a while. Nobody may see a difference.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "jet/error.h"
#include "jet/storage/database_file.h"
#include "tests/jet/storage/faulty_files.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

using BulkState = std::map<RowId, Row>;

Row NumberedTrack(std::int64_t number, std::optional<std::int64_t> id = std::nullopt) {
    Row row(8);
    if (id) row[0] = *id;
    row[1] = "Title " + std::to_string(number * 7919 % 1000);
    row[2] = "Artist " + std::to_string(number / 12);
    row[3] = "cd" + std::to_string(number / 12);
    row[4] = number % 12;
    return row;
}

class WaitingEntries : public testing::Test {
  protected:
    WaitingEntries() {
        DatabaseFile::Create(path_, BothTables());
        file_.emplace(DatabaseFile::Open(path_, OpenMode::ReadWrite));
    }

    Table& Tracks() { return file_->OpenTable("Tracks"); }

    void AddTracks(int count) {
        for (int i = 0; i < count; ++i)
            ids_.push_back(Tracks().Insert(NumberedTrack(i)).row);
    }

    std::optional<ErrorKind> KindOfInsert(const Row& row) {
        try {
            Tracks().Insert(row);
        } catch (const Error& error) {
            return error.Kind();
        }
        return std::nullopt;
    }

    void ExpectWholeFileWith(std::size_t rows) {
        file_->Commit();
        EXPECT_EQ(FaultsOf(path_, true), "");
        EXPECT_EQ(Tracks().RowCount(), rows);
        EXPECT_EQ(RowsOf(Tracks()).size(), rows);
    }

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_ / "waiting.mdb";
    std::optional<DatabaseFile> file_;
    std::vector<RowId> ids_;
};

TEST_F(WaitingEntries, AreSeenByUniqueIndexes) {
    AddTracks(500);
    EXPECT_EQ(KindOfInsert(NumberedTrack(0, 500)), ErrorKind::Duplicate);
    EXPECT_EQ(KindOfInsert(NumberedTrack(0, 250)), ErrorKind::Duplicate);
    EXPECT_EQ(KindOfInsert(NumberedTrack(0, 1000)), std::nullopt);
    EXPECT_EQ(KindOfInsert(NumberedTrack(0, 700)), std::nullopt);
    EXPECT_EQ(KindOfInsert(NumberedTrack(0, 700)), ErrorKind::Duplicate);
    EXPECT_EQ(KindOfInsert(NumberedTrack(0, 1000)), ErrorKind::Duplicate);
    file_->Commit();
    EXPECT_EQ(KindOfInsert(NumberedTrack(0, 250)), ErrorKind::Duplicate);
    AddTracks(1);
    EXPECT_EQ(KindOfInsert(NumberedTrack(0, 1000)), ErrorKind::Duplicate);
    EXPECT_EQ(KindOfInsert(NumberedTrack(0, 1001)), ErrorKind::Duplicate);
    ExpectWholeFileWith(503);
}

TEST_F(WaitingEntries, StayWhenARowAmongThemIsRefused) {
    for (int i = 0; i < 300; ++i) {
        AddTracks(1);
        Row row = NumberedTrack(i);
        row[1] = Null{};
        EXPECT_EQ(KindOfInsert(row), ErrorKind::Required);
        EXPECT_EQ(KindOfInsert(NumberedTrack(i, 1)), ErrorKind::Duplicate);
        row = NumberedTrack(i);
        row[4] = std::int64_t{99999};
        EXPECT_EQ(KindOfInsert(row), ErrorKind::Overflow);
    }
    ExpectWholeFileWith(300);
}

TEST_F(WaitingEntries, StayWhenAChangeAmongThemIsUndone) {
    TableDefinition wide;
    wide.name = "Wide";
    for (int i = 0; i < 20; ++i)
        wide.columns.push_back(
            {.name = "T" + std::to_string(i), .type = ColumnType::Text, .size = 255});
    wide.columns.push_back({.name = "M", .type = ColumnType::Memo});
    wide.indexes = {{.name = "First", .columns = {{0, true}}}};
    const auto path = folder_ / "wide.mdb";
    DatabaseFile::Create(path, std::vector<TableDefinition>{wide});
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    Table& table = file.OpenTable("Wide");
    for (int i = 0; i < 100; ++i) {
        Row row(21);
        row[0] = std::to_string(i * 37 % 100);
        table.Insert(row);
        // The long value has its place before it is found that the row has none.
        std::fill(row.begin(), row.begin() + 20, std::string(255, 'w'));
        row[20] = std::string(5000, 'm');
        EXPECT_THROW(table.Insert(row), Error);
    }
    EXPECT_EQ(table.RowCount(), 100U);
    file.Commit();
    EXPECT_EQ(FaultsOf(path, true), "");
}

TEST_F(WaitingEntries, GoWithTheRowsThatAreDeleted) {
    AddTracks(400);
    std::shuffle(ids_.begin(), ids_.end(), std::mt19937(2));
    for (std::size_t i = 0; i < 300; ++i) {
        Tracks().Delete(ids_[i]);
        if (i % 3 == 0) Tracks().Insert(NumberedTrack(static_cast<std::int64_t>(i)));
    }
    ExpectWholeFileWith(200);
}

TEST_F(WaitingEntries, ChangeWithTheRowsThatAreUpdated) {
    AddTracks(400);
    for (std::size_t i = 0; i < ids_.size(); i += 3) {
        const std::vector<FieldChange> changes{{1, "New title " + std::to_string(i % 50)},
                                               {3, Value(Null{})}};
        Tracks().Update(ids_[i], changes);
        Tracks().Insert(NumberedTrack(static_cast<std::int64_t>(i)));
    }
    ExpectWholeFileWith(534);
}

TEST_F(WaitingEntries, OfRowsInAnyOrderMakeAWholeFile) {
    for (const int step : {1, -1, 7919}) {
        const auto path = folder_ / "order.mdb";
        std::filesystem::remove(path);
        DatabaseFile::Create(path, BothTables());
        auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
        for (int i = 0; i < 3000; ++i) {
            const int number = (i * step % 3000 + 3000) % 3000;
            file.OpenTable("Tracks").Insert(NumberedTrack(number, number + 1));
            if (i == 1000) file.Commit();
        }
        file.Commit();
        EXPECT_EQ(FaultsOf(path, true), "") << step;
    }
}

/// The page that holds a table's counters, of rows and of different keys.
std::string CountersOfTracks(const std::filesystem::path& path) {
    const std::string content = outside::ContentOf(path);
    for (std::size_t at = 0; at < content.size(); at += PageSize)
        if (content[at] == 2 && content.find("P\0r\0i\0m\0a\0r\0y\0K", at) < at + PageSize)
            return content.substr(at, PageSize);
    return {};
}

TEST_F(WaitingEntries, AreCountedAsThoseThatDoNotWait) {
    const auto other = folder_ / "other.mdb";
    std::filesystem::copy_file(path_, other);
    auto committing = DatabaseFile::Open(other, OpenMode::ReadWrite);
    for (int i = 0; i < 600; ++i) {
        const Row row = NumberedTrack(i % 2 == 0 ? i : i / 3);
        Tracks().Insert(row);
        committing.OpenTable("Tracks").Insert(row);
        committing.Commit();
        if (i % 100 == 0) file_->Commit();
    }
    file_->Commit();
    EXPECT_EQ(CountersOfTracks(path_), CountersOfTracks(other));
    EXPECT_NE(CountersOfTracks(path_), "");
}

/// Adds rows to a table by the hundred; what the file is to hold before and after.
std::pair<BulkState, BulkState> AddManyTracks(DatabaseFile& file) {
    Table& table = file.OpenTable("Tracks");
    const BulkState before = RowsOf(table);
    for (int i = 0; i < 1500; ++i)
        table.Insert(NumberedTrack(i * 7 % 1500));
    return {before, RowsOf(table)};
}

BulkState BulkStateOf(const std::filesystem::path& path) {
    auto file = DatabaseFile::Open(path, OpenMode::ReadOnly);
    return RowsOf(file.OpenTable("Tracks"));
}

TEST_F(WaitingEntries, SurviveACommitThatFailsAtAnyWrite) {
    AddTracks(50);
    file_.reset();
    bool reached = true;
    for (std::size_t moment = 0; reached; ++moment) {
        const auto path = folder_ / "failing.mdb";
        outside::CopyOver(path_, path);
        const auto files = std::make_shared<FaultyFileSystem>(1);
        auto file = DatabaseFile::Open(path, OpenMode::ReadWrite, files);
        const auto [before, after] = AddManyTracks(file);
        files->FailAfter(moment, FaultyFileSystem::Fault::DiskFull);
        EXPECT_EQ(files->HasFailed(), false);
        try {
            file.Commit();
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::Io);
        }
        reached = files->HasFailed();
        const BulkState onDisk = BulkStateOf(path);
        EXPECT_TRUE(onDisk == before || onDisk == after) << moment;
        files->Repair();
        file.OpenTable("Tracks").Insert(NumberedTrack(5000));
        file.Commit();
        EXPECT_EQ(BulkStateOf(path), RowsOf(file.OpenTable("Tracks"))) << moment;
        EXPECT_EQ(BulkStateOf(path).size(), after.size() + 1);
        EXPECT_EQ(FaultsOf(path, true), "") << moment;
    }
}

TEST_F(WaitingEntries, AreThereOrNotWithTheirRowsAfterPowerLossAtAnyWrite) {
    AddTracks(50);
    file_.reset();
    bool reached = true;
    for (std::size_t moment = 0; reached; ++moment) {
        const auto path = folder_ / "lost.mdb";
        outside::CopyOver(path_, path);
        const auto files =
            std::make_shared<FaultyFileSystem>(static_cast<std::uint32_t>(moment) + 77);
        std::pair<BulkState, BulkState> states;
        {
            auto file = DatabaseFile::Open(path, OpenMode::ReadWrite, files);
            states = AddManyTracks(file);
            files->FailAfter(moment, FaultyFileSystem::Fault::PowerLoss);
            try {
                file.Commit();
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), ErrorKind::Io);
            }
        }
        reached = files->HasFailed();
        files->LosePower();
        const BulkState readOnly = BulkStateOf(path);
        DatabaseFile::Open(path, OpenMode::ReadWrite);
        EXPECT_EQ(readOnly, BulkStateOf(path)) << moment;
        EXPECT_TRUE(readOnly == states.first || readOnly == states.second) << moment;
        EXPECT_EQ(FaultsOf(path, true), "") << moment;
    }
}

}  // namespace

}  // namespace jet::storage::test
