#include "driver/backups.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
    TimeStampBackup(run, R"(D:\Data\cdj.mdb)");
    EXPECT_THAT(files.Everything(), IsEmpty());
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(Backups, ThatCannotBeCopiedAreLoggedAndTheRunGoesOn) {
    files.AddFile(R"(D:\Data\cdj.mdb)", "rows");
    world.calls.Refuse(R"(CopyFile D:\Data\cdj.mdb -> )" + copyOfDatabase, FailureNumber::DiskFull,
                       copyOfDatabase);
    TimeStampBackup(run, R"(D:\Data\cdj.mdb)");
    EXPECT_THAT(world.host.log,
                ElementsAre("Quillon: TimeStampBackup Line 3 Disk full: " + copyOfDatabase));
    EXPECT_EQ(run.form.aError, "TimeStampBackup");
}

TEST_F(Backups, CopyOfAFolderStandsBesideItWithAllThatIsInside) {
    files.AddFile(R"(C:\Lists\Rock.pla)", "r");
    files.AddFile(R"(C:\Lists\Old\Jazz.pla)", "j");
    TimeStampFolderBackup(run, R"(C:\Lists\)");
    EXPECT_EQ(files.Content(copyOfLists + R"(\Rock.pla)"), "r");
    EXPECT_EQ(files.Content(copyOfLists + R"(\Old\Jazz.pla)"), "j");
    EXPECT_EQ(run.form.aItem, R"(Making Backup for Folder C:\Lists\)");
}

TEST_F(Backups, WithinOneSecondOverwriteEachOther) {
    files.AddFile(R"(C:\Lists\Rock.pla)", "first");
    TimeStampFolderBackup(run, R"(C:\Lists\)");
    files.AddFile(R"(C:\Lists\Rock.pla)", "second");
    TimeStampFolderBackup(run, R"(C:\Lists\)");
    EXPECT_EQ(files.Content(copyOfLists + R"(\Rock.pla)"), "second");
    EXPECT_THAT(world.calls.Of({"CreateFolder"}), ElementsAre("CreateFolder " + copyOfLists));
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
    TimeStampFolderBackup(run, R"(C:\Lists\)");
    EXPECT_THAT(files.Everything(), IsEmpty());
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(Backups, OfAFolderTryToCopyAlthoughTheTargetCouldNotBeMade) {
    files.AddFile(R"(C:\Lists\Rock.pla)", "r");
    world.calls.Refuse("CreateFolder " + copyOfLists, FailureNumber::PermissionDenied, copyOfLists);
    world.calls.Refuse(R"(CopyFolder C:\Lists -> )" + copyOfLists, FailureNumber::PathNotFound,
                       copyOfLists);
    TimeStampFolderBackup(run, R"(C:\Lists\)");
    EXPECT_THAT(
        world.host.log,
        ElementsAre("Quillon: TimeStampFolderBackup Line 6 Permission denied: " + copyOfLists,
                    "Quillon: TimeStampFolderBackup Line 7 Path not found: " + copyOfLists));
}

TEST_F(Backups, LetAbortBePressed) {
    world.window.abortPressed = true;
    TimeStampBackup(run, R"(D:\Data\cdj.mdb)");
    EXPECT_TRUE(run.AbortRequested);
}

}  // namespace
}  // namespace quillon
