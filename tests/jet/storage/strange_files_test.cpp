// What is no plain file is not touched, and a file that is not what it was is not written.
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "jet/error.h"
#include "jet/journal.h"
#include "jet/lock.h"
#include "jet/storage/creation.h"
#include "jet/storage/database_file.h"
#include "tests/jet/storage/faulty_files.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

namespace fs = std::filesystem;

using Fault = FaultyFileSystem::Fault;

/// The text of the error that an action ends with.
template <typename Action>
std::string Refusal(ErrorKind kind, Action action) {
    try {
        action();
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), kind) << error.what();
        return error.what();
    }
    ADD_FAILURE() << "nothing was refused";
    return "";
}

class StrangeFiles : public testing::Test {
  protected:
    StrangeFiles() {
        DatabaseFile::Create(path_, BothTables());
        content_ = outside::ContentOf(path_);
    }

    fs::path Beside(const std::string& ending) const { return path_.string() + ending; }

    TemporaryFolder folder_;
    fs::path path_ = folder_ / "d.mdb";
    std::string content_;
};

TEST_F(StrangeFiles, NothingIsWrittenThroughASymbolicLinkInTheNameOfASidecar) {
    const fs::path precious = folder_ / "precious";
    for (const fs::path& sidecar :
         {Beside(".journal"), Beside(".journal-new"), (folder_ / "d.ldb")}) {
        for (const std::string content : {"", "precious"}) {
            WriteFile(precious, content);
            fs::create_symlink(precious, sidecar);
            const std::string what =
                Refusal(ErrorKind::Io, [&] { DatabaseFile::Open(path_, OpenMode::ReadWrite); });
            EXPECT_NE(what.find(sidecar.string() + " is a symbolic link"), std::string::npos)
                << what;
            EXPECT_EQ(outside::ContentOf(precious), content);
            EXPECT_TRUE(fs::is_symlink(sidecar));
            fs::remove(precious);
            Refusal(ErrorKind::Io, [&] { DatabaseFile::Open(path_, OpenMode::ReadWrite); });
            EXPECT_FALSE(fs::exists(precious));
            fs::remove(sidecar);
        }
    }
    EXPECT_EQ(outside::ContentOf(path_), content_);
    DatabaseFile::Open(path_, OpenMode::ReadWrite);
}

TEST_F(StrangeFiles, NothingIsWrittenThroughASymbolicLinkToMakeADatabase) {
    const fs::path made = folder_ / "made.mdb", precious = folder_ / "precious";
    WriteFile(precious, "precious");
    for (const std::string ending : {"", ".new", ".journal", ".new.journal"}) {
        const fs::path sidecar = made.string() + ending;
        fs::create_symlink(precious, sidecar);
        Refusal(ErrorKind::Io, [&] { DatabaseFile::Create(made, BothTables()); });
        EXPECT_EQ(outside::ContentOf(precious), "precious");
        EXPECT_TRUE(fs::is_symlink(sidecar));
        fs::remove(sidecar);
    }
    fs::create_symlink(folder_ / "nowhere", made);
    Refusal(ErrorKind::Io, [&] { DatabaseFile::Create(made, BothTables()); });
    EXPECT_FALSE(fs::exists(folder_ / "nowhere"));
}

TEST_F(StrangeFiles, AnotherHardLinkToASidecarKeepsItsContent) {
    const fs::path precious = folder_ / "precious";
    WriteFile(precious, "precious");
    fs::create_hard_link(precious, Beside(".journal-new"));
    {
        auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite);
        ModelledTable(file.OpenTable("Tracks"), 1).InsertOne();
        file.Commit();
    }
    EXPECT_EQ(outside::ContentOf(precious), "precious");
    fs::create_hard_link(precious, folder_ / "d.ldb");
    Refusal(ErrorKind::InUse, [&] { DatabaseFile::Open(path_, OpenMode::ReadWrite); });
    EXPECT_EQ(outside::ContentOf(precious), "precious");
}

TEST_F(StrangeFiles, AFifoOrFolderInTheNameOfASidecarIsRefusedAtOnce) {
    for (const fs::path& sidecar :
         {Beside(".journal"), Beside(".journal-new"), (folder_ / "d.ldb")}) {
        ASSERT_EQ(mkfifo(sidecar.c_str(), 0600), 0);
        std::string what =
            Refusal(ErrorKind::Io, [&] { DatabaseFile::Open(path_, OpenMode::ReadWrite); });
        EXPECT_NE(what.find(sidecar.string() + " is a FIFO"), std::string::npos) << what;
        EXPECT_TRUE(fs::is_fifo(sidecar));
        if (sidecar.extension() == ".ldb") {
            Refusal(ErrorKind::Io, [&] { LookAtLock(path_); });
        }
        fs::remove(sidecar);
        fs::create_directory(sidecar);
        what = Refusal(ErrorKind::Io, [&] { DatabaseFile::Open(path_, OpenMode::ReadWrite); });
        EXPECT_NE(what.find(sidecar.string() + " is a folder"), std::string::npos) << what;
        EXPECT_TRUE(fs::is_directory(sidecar));
        fs::remove(sidecar);
    }
    ASSERT_EQ(mkfifo(Beside(".journal").c_str(), 0600), 0);
    Refusal(ErrorKind::Io, [&] { DatabaseFile::Open(path_, OpenMode::ReadOnly); });
    Refusal(ErrorKind::Io, [&] { LookAtJournal(path_); });
}

TEST_F(StrangeFiles, AFifoDeviceOrFolderAsDatabaseIsRefusedAtOnce) {
    const fs::path fifo = folder_ / "fifo.mdb", link = folder_ / "link.mdb";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", link);
    for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
        const auto open = [mode](const fs::path& path) {
            return Refusal(ErrorKind::NotADatabase, [&] { DatabaseFile::Open(path, mode); });
        };
        EXPECT_NE(open(fifo).find("is a FIFO and not an Access database."), std::string::npos);
        EXPECT_NE(open(link).find("is a device and not"), std::string::npos);
        EXPECT_NE(open(folder_.Path()).find("is a folder and not"), std::string::npos);
    }
    EXPECT_FALSE(fs::exists("/dev/zero.ldb"));
    EXPECT_FALSE(fs::exists(folder_ / "fifo.ldb"));
}

TEST_F(StrangeFiles, AJournalOfADatabaseThatIsGoneIsNotGivenToANewOne) {
    WriteFile(Beside(".journal"), "left");
    fs::remove(path_);
    const std::string what =
        Refusal(ErrorKind::Io, [&] { DatabaseFile::Create(path_, BothTables()); });
    EXPECT_NE(what.find("was left by another database"), std::string::npos) << what;
    EXPECT_FALSE(fs::exists(path_));
    EXPECT_EQ(outside::ContentOf(Beside(".journal")), "left");
}

TEST_F(StrangeFiles, WhatAKilledCreationHasLeftDoesNotGetIntoTheNextOne) {
    // The journal of a creation fits the beginning of every other one.
    const fs::path made = folder_ / "made.mdb";
    std::size_t left = 0;
    bool reached = true;
    for (std::size_t moment = 0; reached; ++moment) {
        const auto files = std::make_shared<FaultyFileSystem>(1);
        files->FailAfter(moment, Fault::PowerLoss);
        try {
            WriteNewDatabase(files, made.string() + ".new", std::vector{EveryTypeTable()});
        } catch (const Error&) {
            left += fs::exists(made.string() + ".new.journal") ? 1U : 0U;
        }
        reached = files->HasFailed();
        DatabaseFile::Create(made, BothTables());
        EXPECT_EQ(DatabaseFile::Open(made, OpenMode::ReadOnly).TableNames().size(), 2U);
        EXPECT_EQ(outside::ContentOf(made).size(), content_.size()) << moment;
        EXPECT_EQ(FaultsOf(made, true), "") << moment;
        EXPECT_FALSE(fs::exists(made.string() + ".new.journal"));
        fs::remove(made);
    }
    EXPECT_GT(left, 0U);
}

TEST_F(StrangeFiles, HalfAnEntryInTheLockFileIsSomebodys) {
    WriteFile(folder_ / "d.ldb", "OFFICE");
    const std::string what =
        Refusal(ErrorKind::InUse, [&] { DatabaseFile::Open(path_, OpenMode::ReadWrite); });
    EXPECT_NE(what.find("seems to be in use by OFFICE"), std::string::npos) << what;
    EXPECT_EQ(outside::ContentOf(folder_ / "d.ldb"), "OFFICE");
}

/// A database that is open and has changes, while something happens to its file.
class OpenDatabase : public StrangeFiles {
  protected:
    OpenDatabase() : file_(DatabaseFile::Open(path_, OpenMode::ReadWrite)) {
        Change();
        file_.Commit();
        Change();
        committed_ = outside::ContentOf(path_);
        // File times have a resolution of some milliseconds.
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }

    void Change() { ModelledTable(file_.OpenTable("Tracks"), ++seed_).InsertOne(); }

    void ExpectNoCommit(const std::string& words) {
        for (int attempt = 0; attempt < 2; ++attempt) {
            const std::string what = Refusal(ErrorKind::Changed, [&] { file_.Commit(); });
            EXPECT_NE(what.find(path_.string() + words), std::string::npos) << what;
            EXPECT_FALSE(fs::exists(Beside(".journal")));
            EXPECT_FALSE(fs::exists(Beside(".journal-new")));
        }
    }

    std::uint32_t seed_ = 0;
    DatabaseFile file_;
    std::string committed_;
};

TEST_F(OpenDatabase, ThatIsReplacedIsNotWrittenAnyMore) {
    const fs::path old = folder_ / "old.mdb", other = folder_ / "other.mdb";
    fs::create_hard_link(path_, old);
    WriteFile(other, content_);
    fs::rename(other, path_);
    ExpectNoCommit(" has been replaced by another file while it was open");
    EXPECT_EQ(outside::ContentOf(path_), content_);
    EXPECT_EQ(outside::ContentOf(old), committed_);
}

TEST_F(OpenDatabase, ThatIsRemovedOrRenamedIsNotWrittenAnyMore) {
    const fs::path old = folder_ / "old.mdb";
    fs::rename(path_, old);
    ExpectNoCommit(" has been removed or renamed while it was open");
    EXPECT_EQ(outside::ContentOf(old), committed_);
    fs::rename(old, path_);
    file_.Commit();
}

TEST_F(OpenDatabase, ThatIsOverwrittenWithAnotherStateIsNotWrittenAnyMore) {
    WriteFile(path_, content_);
    ExpectNoCommit(" has been changed by another program while it was open");
    EXPECT_EQ(outside::ContentOf(path_), content_);
}

TEST_F(OpenDatabase, OfWhichAPageIsChangedIsNotWrittenAnyMore) {
    std::string changed = committed_;
    changed[2 * PageSize + 100] = static_cast<char>(changed[2 * PageSize + 100] ^ 1);
    WriteFile(path_, changed);
    ExpectNoCommit(" has been changed by another program while it was open");
    EXPECT_EQ(outside::ContentOf(path_), changed);
}

TEST_F(OpenDatabase, ThatGrowsIsNotWrittenAnyMore) {
    WriteFile(path_, committed_ + std::string(PageSize, '\0'));
    ExpectNoCommit(" has been changed by another program while it was open");
}

TEST_F(OpenDatabase, MayGetAnotherTime) {
    WriteFile(path_, committed_);
    file_.Commit();
    EXPECT_NE(outside::ContentOf(path_), committed_);
    EXPECT_EQ(FaultsOf(path_, true), "");
}

TEST_F(OpenDatabase, IsTheOneThatItsNameLedTo) {
    const fs::path link = folder_ / "link.mdb", other = folder_ / "other.mdb";
    WriteFile(other, content_);
    fs::create_symlink(other, link);
    auto file = DatabaseFile::Open(link, OpenMode::ReadWrite);
    ModelledTable(file.OpenTable("Tracks"), 1).InsertOne();
    fs::remove(link);
    fs::create_symlink(path_, link);
    const std::string what = Refusal(ErrorKind::Changed, [&] { file.Commit(); });
    EXPECT_NE(what.find(link.string() + " has been replaced"), std::string::npos) << what;
    EXPECT_EQ(outside::ContentOf(other), content_);
    EXPECT_EQ(outside::ContentOf(path_), committed_);
}

TEST(AFailingLook, NeverHidesAJournal) {
    const TemporaryFolder folder;
    const auto path = folder / "d.mdb";
    DatabaseFile::Create(path, BothTables());
    const std::string start = outside::ContentOf(path);
    struct Situation {
        std::string database, journal;
        std::map<RowId, Row> rows;
    };
    std::vector<Situation> states;
    bool reached = true;
    for (std::size_t moment = 0; reached; ++moment) {
        WriteFile(path, start);
        fs::remove(path.string() + ".journal");
        fs::remove(path.string() + ".journal-new");
        const auto files = std::make_shared<FaultyFileSystem>(1);
        std::map<RowId, Row> after;
        try {
            auto file = DatabaseFile::Open(path, OpenMode::ReadWrite, files);
            ModelledTable model(file.OpenTable("Tracks"), 3);
            model.Change(12);
            after = model.Rows();
            files->FailAfter(moment, Fault::PowerLoss);
            file.Commit();
        } catch (const Error&) {
            files->Repair();
        }
        reached = files->HasFailed();
        if (fs::exists(path.string() + ".journal"))
            states.push_back(
                {outside::ContentOf(path), outside::ContentOf(path.string() + ".journal"), after});
    }
    ASSERT_GE(states.size(), 3U);
    states = {states.front(), states[states.size() / 2], states.back()};
    std::size_t failures = 0;
    for (const auto& [database, journal, rows] : states) {
        for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
            bool failed = true;
            for (std::size_t look = 0; failed; ++look) {
                WriteFile(path, database);
                WriteFile(path.string() + ".journal", journal);
                const auto files = std::make_shared<FaultyFileSystem>(1);
                files->FailLookAfter(look);
                try {
                    auto file = DatabaseFile::Open(path, mode, files);
                    EXPECT_EQ(RowsOf(file.OpenTable("Tracks")), rows) << look;
                } catch (const Error& error) {
                    EXPECT_EQ(error.Kind(), ErrorKind::Io) << error.what();
                    ++failures;
                }
                failed = files->HasFailed();
                files->Repair();
                EXPECT_EQ(RowsOf(DatabaseFile::Open(path, OpenMode::ReadOnly).OpenTable("Tracks")),
                          rows)
                    << look;
                if (testing::Test::HasFailure()) return;
            }
        }
    }
    EXPECT_GT(failures, 50U);
}

TEST(AFailingLook, InACommitLosesNothing) {
    const TemporaryFolder folder;
    const auto path = folder / "d.mdb";
    DatabaseFile::Create(path, BothTables());
    bool failed = true;
    std::size_t failures = 0;
    for (std::size_t look = 0; failed; ++look) {
        const auto files = std::make_shared<FaultyFileSystem>(1);
        auto file = DatabaseFile::Open(path, OpenMode::ReadWrite, files);
        ModelledTable model(file.OpenTable("Tracks"), static_cast<std::uint32_t>(look));
        model.Change(5);
        files->FailLookAfter(look);
        try {
            file.Commit();
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::Io) << error.what();
            ++failures;
        }
        failed = files->HasFailed();
        files->Repair();
        file.Commit();
        EXPECT_EQ(RowsOf(DatabaseFile::Open(path, OpenMode::ReadOnly).OpenTable("Tracks")),
                  model.Rows());
        EXPECT_EQ(FaultsOf(path, true), "");
        EXPECT_FALSE(fs::exists(path.string() + ".journal"));
        if (testing::Test::HasFailure()) return;
    }
    EXPECT_GT(failures, 5U);
}

}  // namespace

}  // namespace jet::storage::test
