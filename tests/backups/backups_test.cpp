#include "backups/backups.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class Backups : public ::testing::Test {
  protected:
    using Run = quillon::Run;  // not the one of ::testing::Test

    fakes::FakeWorld world;
    fakes::FakeFiles& files = world.files;
    Run& run = world.run;
    const std::string copyOfDatabase = R"(D:\Data\cdj.mdb_Copy Dated_11152026_53855_AM_)";
    const std::string copyOfLists = R"(C:\Lists_Copy Dated_11152026_53855_AM_)";
};

TEST_F(Backups, StampIsTheDateTextWithoutItsMarks) {
    EXPECT_EQ(BackupStamp(MakeDateTime(2026, 11, 15, 5, 38, 55)), "11152026_53855_AM");
    EXPECT_EQ(BackupStamp(MakeDateTime(2026, 1, 2, 15, 4, 5)), "122026_30405_PM");
}

TEST_F(Backups, CopyOfAFileStandsBesideItUnderItsWholeName) {
    files.AddFile(R"(D:\Data\cdj.mdb)", "rows");
    TimeStampBackup(run, R"(D:\Data\cdj.mdb)");
    EXPECT_EQ(files.Content(copyOfDatabase), "rows");
    EXPECT_EQ(files.Content(R"(D:\Data\cdj.mdb)"), "rows");
    EXPECT_EQ(run.form.aItem, R"(Making Backup for file D:\Data\cdj.mdb)");
    EXPECT_EQ(world.window.last.aItem, R"(Making Backup for file D:\Data\cdj.mdb)");
}

TEST_F(Backups, OfAFileThatIsNotThereDoNothing) {
    EXPECT_TRUE(TimeStampBackup(run, R"(D:\Data\cdj.mdb)").succeeded);
    EXPECT_THAT(files.Everything(), IsEmpty());
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(Backups, ThatCannotBeCopiedAreLoggedWithWhatToDo) {
    files.AddFile(R"(D:\Data\cdj.mdb)", "rows");
    world.calls.Refuse(R"(CopyFile D:\Data\cdj.mdb -> )" + copyOfDatabase, FailureNumber::DiskFull,
                       copyOfDatabase);
    EXPECT_FALSE(TimeStampBackup(run, R"(D:\Data\cdj.mdb)").succeeded);
    EXPECT_THAT(world.host.log,
                ElementsAre("Quillon: TimeStampBackup Line 3 Disk full: " + copyOfDatabase +
                            "; nothing was changed. A run makes this copy first: free some space, "
                            "or give this account the right to read and write there, and run "
                            "again"));
    EXPECT_EQ(run.form.aError, "TimeStampBackup");
}

TEST_F(Backups, NameThePathWhateverFails) {
    files.AddFile(R"(D:\Data\cdj.mdb)", "rows");
    world.calls.Refuse(R"(CopyFile D:\Data\cdj.mdb -> )" + copyOfDatabase,
                       FailureNumber::PathFileAccess, "");
    EXPECT_FALSE(TimeStampBackup(run, R"(D:\Data\cdj.mdb)").succeeded);
    ASSERT_EQ(world.host.log.size(), 1U);
    EXPECT_THAT(world.host.log[0], HasSubstr(R"((D:\Data\cdj.mdb); nothing was changed)"));
}

/// Files whose disk fails to tell what there is.
struct FailingFiles : fakes::FakeFiles {
    using FakeFiles::FakeFiles;
    bool FileExists(std::string_view path) override { Fail(path); }
    bool FolderExists(std::string_view path) override { Fail(path); }
    [[noreturn]] static void Fail(std::string_view path) {
        throw Failure(FailureNumber::PathFileAccess, std::string(path) + " (Input/output error)");
    }
};

TEST_F(Backups, OfWhatCannotBeLookedAtFail) {
    FailingFiles failing(world.calls);
    Run other(world.host, failing, world.clock, world.window);
    EXPECT_FALSE(TimeStampBackup(other, R"(D:\Data\cdj.mdb)").succeeded);
    EXPECT_FALSE(TimeStampFolderBackup(other, R"(C:\Lists\)").succeeded);
    ASSERT_EQ(world.host.log.size(), 2U);
    EXPECT_THAT(world.host.log[0], HasSubstr("TimeStampBackup Line 3 Path/File access error: "
                                             R"(D:\Data\cdj.mdb (Input/output error); nothing)"));
    EXPECT_THAT(world.host.log[1], HasSubstr("TimeStampFolderBackup Line 5 Path/File access error: "
                                             R"(C:\Lists (Input/output error))"));
}

TEST_F(Backups, CopyOfAFolderStandsBesideItWithAllThatIsInside) {
    files.AddFile(R"(C:\Lists\Rock.pla)", "r");
    files.AddFile(R"(C:\Lists\Old\Jazz.pla)", "j");
    TimeStampFolderBackup(run, R"(C:\Lists\)");
    EXPECT_EQ(files.Content(copyOfLists + R"(\Rock.pla)"), "r");
    EXPECT_EQ(files.Content(copyOfLists + R"(\Old\Jazz.pla)"), "j");
    EXPECT_EQ(run.form.aItem, R"(Making Backup for Folder C:\Lists\)");
}

TEST_F(Backups, WithinOneSecondStandBesideEachOther) {
    files.AddFile(R"(C:\Lists\Rock.pla)", "first");
    files.AddFile(R"(D:\Data\cdj.mdb)", "first");
    for (const std::string content : {"first", "second", "third"}) {
        files.AddFile(R"(C:\Lists\Rock.pla)", content);
        files.AddFile(R"(D:\Data\cdj.mdb)", content);
        EXPECT_TRUE(TimeStampFolderBackup(run, R"(C:\Lists\)").succeeded);
        EXPECT_TRUE(TimeStampBackup(run, R"(D:\Data\cdj.mdb)").succeeded);
    }
    EXPECT_EQ(files.Content(copyOfLists + R"(\Rock.pla)"), "first");
    EXPECT_EQ(files.Content(copyOfLists + R"(2_\Rock.pla)"), "second");
    EXPECT_EQ(files.Content(copyOfLists + R"(3_\Rock.pla)"), "third");
    EXPECT_EQ(files.Content(copyOfDatabase), "first");
    EXPECT_EQ(files.Content(copyOfDatabase + "2_"), "second");
    EXPECT_EQ(files.Content(copyOfDatabase + "3_"), "third");
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(Backups, OfDifferentSecondsStandBesideEachOther) {
    files.AddFile(R"(C:\Lists\Rock.pla)", "r");
    TimeStampFolderBackup(run, R"(C:\Lists\)");
    world.clock.now = MakeDateTime(2026, 11, 15, 5, 38, 56);
    TimeStampFolderBackup(run, R"(C:\Lists\)");
    EXPECT_TRUE(files.FolderExists(copyOfLists));
    EXPECT_TRUE(files.FolderExists(R"(C:\Lists_Copy Dated_11152026_53856_AM_)"));
}

TEST_F(Backups, TakeTheLastCharacterOfAFolderForABackslash) {
    files.AddFile(R"(C:\List\Rock.pla)", "r");
    files.AddFile(R"(C:\Lists\Jazz.pla)", "j");
    TimeStampFolderBackup(run, R"(C:\Lists)");
    EXPECT_EQ(files.Content(R"(C:\List_Copy Dated_11152026_53855_AM_\Rock.pla)"), "r");
    EXPECT_FALSE(files.FolderExists(copyOfLists));
}

TEST_F(Backups, OfNoFolderDoNothing) {
    TimeStampFolderBackup(run, "");
    EXPECT_EQ(run.form.aItem, "Making Backup for Folder ");
    TimeStampFolderBackup(run, "\\");
    EXPECT_TRUE(TimeStampFolderBackup(run, R"(C:\Lists\)").succeeded);
    EXPECT_THAT(files.Everything(), IsEmpty());
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(Backups, OfAFolderThatCannotBeCopiedAreLogged) {
    files.AddFile(R"(C:\Lists\Rock.pla)", "r");
    world.calls.Refuse(R"(CopyFolder C:\Lists -> )" + copyOfLists, FailureNumber::PermissionDenied,
                       copyOfLists);
    EXPECT_FALSE(TimeStampFolderBackup(run, R"(C:\Lists\)").succeeded);
    ASSERT_EQ(world.host.log.size(), 1U);
    EXPECT_THAT(world.host.log[0],
                StartsWith("Quillon: TimeStampFolderBackup Line 5 Permission denied: " +
                           copyOfLists + "; nothing was changed. "));
}

TEST_F(Backups, OfAWholeDriveSayThatThereIsNoPlaceForThem) {
    files.AddFile(R"(\\nas\lists\Rock.pla)", "r");
    EXPECT_FALSE(TimeStampFolderBackup(run, R"(\\nas\lists\)").succeeded);
    EXPECT_THAT(world.host.log,
                ElementsAre(R"(Quillon: TimeStampFolderBackup Line 5 \\nas\lists\ is a whole )"
                            "drive, and the copy that a run makes first cannot lie beside it; "
                            "nothing was changed. "
                            "Name a folder on it in the settings, and run again"));
    EXPECT_THAT(world.calls.Of({"Copy"}), IsEmpty());
}

TEST_F(Backups, AreTakenBackWithAllThatIsInThem) {
    files.AddFile(R"(D:\Data\cdj.mdb)", "rows");
    files.AddFile(R"(C:\Lists\Rock.pla)", "r");
    const std::vector<std::string> before = files.Everything();
    TakeBackupsBack(run, {TimeStampBackup(run, R"(D:\Data\cdj.mdb)").copy,
                          TimeStampFolderBackup(run, R"(C:\Lists\)").copy});
    EXPECT_EQ(files.Everything(), before);
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(Backups, LetAbortBePressed) {
    world.window.abortPressed = true;
    TimeStampBackup(run, R"(D:\Data\cdj.mdb)");
    EXPECT_TRUE(run.AbortRequested);
}

}  // namespace
}  // namespace quillon
