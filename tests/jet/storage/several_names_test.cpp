// A file with several names has one lock and one journal.
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "jet/error.h"
#include "jet/journal.h"
#include "jet/lock.h"
#include "jet/storage/database_file.h"
#include "tests/jet/storage/faulty_files.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"
#include "tests/outside/child_process.h"

namespace jet::storage::test {

namespace {

namespace fs = std::filesystem;

using Fault = FaultyFileSystem::Fault;
using Rows = std::map<RowId, Row>;

Rows TracksIn(const fs::path& path, OpenMode mode) {
    return RowsOf(DatabaseFile::Open(path, mode).OpenTable("Tracks"));
}

class SeveralNames : public testing::Test {
  protected:
    SeveralNames() {
        fs::create_directory(folder_ / "other");
        DatabaseFile::Create(name_, BothTables());
        fs::create_hard_link(name_, hardLink_);
        fs::create_symlink(name_, symbolicLink_);
    }

    /// Changes rows and is cut off at a moment of the commit; whether there was such a moment.
    bool CutOff(const std::shared_ptr<FaultyFileSystem>& files, const fs::path& path,
                std::size_t moment) {
        try {
            auto file = DatabaseFile::Open(path, OpenMode::ReadWrite, files);
            ModelledTable model(file.OpenTable("Tracks"), 3);
            before_ = model.Rows();
            model.Change(12);
            after_ = model.Rows();
            files->FailAfter(moment, Fault::PowerLoss);
            file.Commit();
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::Io) << error.what();
        }
        return files->HasFailed();
    }

    void ExpectKind(ErrorKind kind, const fs::path& path, const std::string& words,
                    const std::shared_ptr<FileSystem>& files = RealFileSystem()) {
        try {
            DatabaseFile::Open(path, OpenMode::ReadWrite, files);
            ADD_FAILURE() << "opened " << path;
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), kind) << error.what();
            EXPECT_NE(std::string(error.what()).find(words), std::string::npos) << error.what();
        }
    }

    /// The files beside the database's names.
    std::size_t Sidecars() const {
        std::size_t count = 0;
        for (const auto& entry : fs::recursive_directory_iterator(folder_.Path()))
            if (entry.path().extension() != ".mdb" && !entry.is_directory()) ++count;
        return count;
    }

    TemporaryFolder folder_;
    fs::path name_ = folder_ / "name.mdb";
    fs::path hardLink_ = folder_ / "other/hard.mdb";
    fs::path symbolicLink_ = folder_ / "other/soft.mdb";
    Rows before_, after_;
};

TEST_F(SeveralNames, HaveOneLock) {
    for (const fs::path& first : {name_, hardLink_, symbolicLink_}) {
        for (const fs::path& second : {name_, hardLink_, symbolicLink_}) {
            const auto file = DatabaseFile::Open(first, OpenMode::ReadWrite);
            ExpectKind(ErrorKind::InUse, second, "is in use by");
            EXPECT_EQ(LookAtLock(second).kind, LockState::Kind::InUse) << first << second;
            EXPECT_EQ(Sidecars(), 1U);
        }
    }
    EXPECT_EQ(LookAtLock(hardLink_).kind, LockState::Kind::Free);
    EXPECT_EQ(Sidecars(), 0U);
}

TEST_F(SeveralNames, OfASymbolicLinkHaveTheLockFileBesideTheFileItself) {
    const auto file = DatabaseFile::Open(symbolicLink_, OpenMode::ReadWrite);
    EXPECT_TRUE(fs::exists(folder_ / "name.ldb"));
    EXPECT_EQ(LookAtLock(symbolicLink_).file, folder_ / "name.ldb");
}

/// Adds rows one by one, each in an opening of its own, waiting while others have the file.
int InsertThrough(const fs::path& path, int rows) {
    for (int done = 0; done < rows;) {
        try {
            auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
            Table& table = file.OpenTable("Tracks");
            Row row(table.Definition().columns.size());
            row[1] = path.filename().string() + std::to_string(done);
            table.Insert(row);
            file.Commit();
            ++done;
        } catch (const Error& error) {
            if (error.Kind() != ErrorKind::InUse) return 1;
            usleep(200);
        }
    }
    return 0;
}

TEST_F(SeveralNames, TakeInsertsOfSeveralProgramsAtOnceWithoutHarm) {
    constexpr int RowsEach = 40;
    std::vector<std::unique_ptr<outside::ChildProcess>> children;
    for (const fs::path& path : {name_, hardLink_, symbolicLink_}) {
        children.push_back(std::make_unique<outside::ChildProcess>(
            [path] { return InsertThrough(path, RowsEach); }));
    }
    for (const auto& child : children) {
        const int status = child->Wait();
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    EXPECT_EQ(TracksIn(name_, OpenMode::ReadOnly).size(), 3U * RowsEach);
    EXPECT_EQ(FaultsOf(name_, true), "");
    EXPECT_EQ(Sidecars(), 0U);
}

TEST_F(SeveralNames, ShareTheJournalOfAProgramThatWasCutOff) {
    const std::string start = outside::ContentOf(name_);
    bool foundOne = false, reached = true;
    for (std::size_t moment = 0; reached; ++moment) {
        for (const bool powerIsLost : {false, true}) {
            WriteFile(name_, start);
            const auto files = std::make_shared<FaultyFileSystem>(moment);
            reached = CutOff(files, hardLink_, moment);
            if (powerIsLost) files->LosePower();
            foundOne = foundOne || LookAtJournal(name_).kind == JournalState::Kind::Waits;

            const Rows seen = TracksIn(name_, OpenMode::ReadOnly);
            EXPECT_EQ(seen, TracksIn(symbolicLink_, OpenMode::ReadOnly));
            const Rows repaired = TracksIn(name_, OpenMode::ReadWrite);
            EXPECT_EQ(seen, repaired) << moment;
            EXPECT_TRUE(repaired == before_ || repaired == after_) << moment;
            EXPECT_EQ(FaultsOf(name_, true), "") << moment;
            // The other name may still have a journal. It is of no consequence.
            auto file = DatabaseFile::Open(name_, OpenMode::ReadWrite);
            ModelledTable model(file.OpenTable("Tracks"), 5);
            model.InsertOne();
            file.Commit();
            EXPECT_EQ(TracksIn(hardLink_, OpenMode::ReadOnly), model.Rows()) << moment;
            if (testing::Test::HasFailure()) return;
        }
    }
    EXPECT_TRUE(foundOne);
    TracksIn(hardLink_, OpenMode::ReadWrite);
    EXPECT_EQ(Sidecars(), 0U);
}

TEST_F(SeveralNames, AreRefusedWhereTheJournalOfAnotherNameIsMissing) {
    std::size_t refused = 0;
    bool reached = true;
    const std::string start = outside::ContentOf(name_);
    for (std::size_t moment = 0; reached; ++moment) {
        WriteFile(name_, start);
        reached = CutOff(std::make_shared<FaultyFileSystem>(1), hardLink_, moment);
        const JournalState journal = LookAtJournal(name_);
        if (journal.kind == JournalState::Kind::Waits) {
            const fs::path away = folder_ / "away";
            const std::string cutOff = outside::ContentOf(name_);
            fs::rename(journal.file, away);
            ExpectKind(ErrorKind::Damaged, name_, hardLink_.string() + ".journal, is missing");
            EXPECT_THROW(DatabaseFile::Open(name_, OpenMode::ReadOnly), Error);
            EXPECT_EQ(outside::ContentOf(name_), cutOff);
            EXPECT_EQ(Sidecars(), 1U);
            fs::rename(away, journal.file);
            ++refused;
        }
        DatabaseFile::Open(hardLink_, OpenMode::ReadWrite);
        EXPECT_EQ(Sidecars(), 0U);
    }
    EXPECT_GT(refused, 0U);
}

TEST_F(SeveralNames, AreNotWrittenWhereNeitherLockNorJournalFollowsTheFile) {
    const std::string content = outside::ContentOf(name_);
    const auto files = std::make_shared<FaultyFileSystem>(1);
    files->BeSimple();
    ExpectKind(ErrorKind::NotSupported, name_, "has 2 names (hard links)", files);
    EXPECT_EQ(Sidecars(), 0U);
    EXPECT_EQ(outside::ContentOf(name_), content);
    fs::remove(hardLink_);
    auto file = DatabaseFile::Open(name_, OpenMode::ReadWrite, files);
    ModelledTable model(file.OpenTable("Tracks"), 5);
    model.InsertOne();
    file.Commit();
    EXPECT_EQ(TracksIn(name_, OpenMode::ReadOnly), model.Rows());
}

TEST_F(SeveralNames, LeaveACopyOfTheFileAlone) {
    const fs::path copy = folder_ / "copy.mdb";
    bool reached = true, waited = false;
    const std::string start = outside::ContentOf(name_);
    for (std::size_t moment = 0; reached; ++moment) {
        WriteFile(name_, start);
        reached = CutOff(std::make_shared<FaultyFileSystem>(1), name_, moment);
        const JournalState journal = LookAtJournal(name_);
        // A file that was cut off while it grew cannot be read without its journal.
        if (journal.kind == JournalState::Kind::Waits && fs::file_size(name_) % PageSize == 0) {
            waited = true;
            // With everything that is kept with the file.
            OutputOf("cp --preserve=all '" + name_.string() + "' '" + copy.string() + "'");
            EXPECT_EQ(LookAtJournal(copy).kind, JournalState::Kind::None);
            fs::remove(copy);
        }
        DatabaseFile::Open(name_, OpenMode::ReadWrite);
    }
    EXPECT_TRUE(waited);
}

TEST_F(SeveralNames, GivenToTheFileAfterwardsLeadToItsJournal) {
    fs::remove(hardLink_);
    const std::string start = outside::ContentOf(name_);
    bool reached = true, waited = false;
    for (std::size_t moment = 0; reached; ++moment) {
        WriteFile(name_, start);
        reached = CutOff(std::make_shared<FaultyFileSystem>(1), name_, moment);
        if (LookAtJournal(name_).kind == JournalState::Kind::Waits) {
            waited = true;
            fs::rename(name_, hardLink_);
            const Rows rows = TracksIn(hardLink_, OpenMode::ReadWrite);
            EXPECT_TRUE(rows == before_ || rows == after_);
            EXPECT_EQ(FaultsOf(hardLink_, true), "");
            fs::rename(hardLink_, name_);
        }
        DatabaseFile::Open(name_, OpenMode::ReadWrite);
        EXPECT_EQ(Sidecars(), 0U);
    }
    EXPECT_TRUE(waited);
}

}  // namespace

}  // namespace jet::storage::test
