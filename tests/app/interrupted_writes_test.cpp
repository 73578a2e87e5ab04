#include "app/interrupted_writes.h"

#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/journal/journal_file.h"
#include "tests/app/program_test.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StrEq;

constexpr std::int64_t OldTime = 1'500'000'000'123'456'700;

/// D:\a.mp3 and D:\b.mp3, and runs that have written "NEW" over "OLD" in them.
class InterruptedWritesTest : public ::testing::Test {
  protected:
    InterruptedWritesTest() {
        folder_.MakeFile("host/host.ini", "[Drives]\nD=..\n");
        folder_.MakeFile("host/Quillon.ini", "");
        local_ = std::make_unique<LocalHost>(folder_ / "host", [](LogKind, const std::string&) {});
    }

    /// The journal of a run that is going on, or was killed.
    std::unique_ptr<JournalFile> StartedRun() {
        auto journal =
            std::make_unique<JournalFile>(ChangesFolder(local_->host.Folder()), local_->clock);
        journal->Note(RunStarted{.stamp = journal->Stamp(), .version = "1", .mode = ""});
        return journal;
    }
    static FileChange TagWritten(std::uint64_t number, const std::string& path) {
        return {.number = number,
                .kind = FileChange::Kind::EndWritten,
                .path = path,
                .position = 5,
                .before = FileContent{.size = 8, .bytes = "OLD", .exactTime = OldTime},
                .after = FileContent{.size = 8, .bytes = "NEW"}};
    }
    void PutRight(std::string_view own = "") {
        notes_.clear();
        left_ = PutInterruptedWritesRight(
            *local_, own,
            [this](LogKind, const std::string& message) { notes_.push_back(message); });
    }
    /// A run that comes to its end.
    void WholeRun() {
        const auto journal = StartedRun();
        PutRight(journal->Stamp());
        for (const WriteLeft& left : left_)
            journal->Remark(left);
        journal->Remark(RunEnded{.outcome = "completed"});
    }
    /// A run that was killed when it had planned to write these tags.
    std::string KilledRun(const std::vector<std::string>& paths) {
        const auto journal = StartedRun();
        std::uint64_t number = 0;
        for (const std::string& path : paths)
            journal->Note(TagWritten(++number, path));
        return journal->Stamp();
    }
    std::int64_t TimeOf(const std::string& path) { return local_->files.ExactTimeOf(path); }

    outside::TemporaryFolder folder_;
    std::unique_ptr<LocalHost> local_;
    std::vector<std::string> notes_;
    std::vector<WriteLeft> left_;
};

TEST_F(InterruptedWritesTest, ATagThatIsThereInPartIsWhatItWasWithItsTime) {
    folder_.MakeFile("a.mp3", "soundNLW");
    folder_.MakeFile("b.mp3", "soundOEW");
    const auto journal = StartedRun();
    journal->Note(TagWritten(1, R"(D:\a.mp3)"));
    journal->Note(TagWritten(2, R"(D:\b.mp3)"));
    PutRight();
    for (const char* const name : {"a.mp3", "b.mp3"}) {
        EXPECT_EQ(folder_.Content(name), "soundOLD");
        EXPECT_EQ(TimeOf(std::string("D:\\") + name), OldTime);
    }
    EXPECT_THAT(notes_,
                ElementsAre(R"(D:\b.mp3: what an interrupted run was writing is put right)",
                            R"(D:\a.mp3: what an interrupted run was writing is put right)"));
    PutRight();
    EXPECT_THAT(notes_, IsEmpty());
}

TEST_F(InterruptedWritesTest, TheFileThatWasWrittenLastHasItsTimeBack) {
    folder_.MakeFile("a.mp3", "soundNEW");
    folder_.MakeFile("b.mp3", "soundNEW");
    const std::int64_t time = TimeOf(R"(D:\a.mp3)");
    const auto journal = StartedRun();
    journal->Note(TagWritten(1, R"(D:\a.mp3)"));
    journal->Note(TagWritten(2, R"(D:\b.mp3)"));
    PutRight();
    EXPECT_EQ(TimeOf(R"(D:\a.mp3)"), time);
    EXPECT_EQ(TimeOf(R"(D:\b.mp3)"), OldTime);
    EXPECT_EQ(folder_.Content("b.mp3"), "soundNEW");
    EXPECT_THAT(notes_, ElementsAre(HasSubstr("b.mp3")));
}

TEST_F(InterruptedWritesTest, FilesThatWereRecordedTogetherHaveTheirTimesBack) {
    for (const char* const name : {"a.mp3", "b.mp3", "c.mp3"})
        folder_.MakeFile(name, "soundNEW");
    const std::int64_t time = TimeOf(R"(D:\a.mp3)");
    const auto journal = StartedRun();
    journal->Note(TagWritten(1, R"(D:\a.mp3)"));
    for (const auto& [number, path] : {std::pair(2U, R"(D:\b.mp3)"), {3U, R"(D:\c.mp3)"}}) {
        FileChange together = TagWritten(number, path);
        together.group = 2;
        journal->Note(together);
    }
    PutRight();
    EXPECT_EQ(TimeOf(R"(D:\a.mp3)"), time);
    EXPECT_EQ(TimeOf(R"(D:\b.mp3)"), OldTime);
    EXPECT_EQ(TimeOf(R"(D:\c.mp3)"), OldTime);
}

TEST_F(InterruptedWritesTest, WhatAnotherProgramHasWrittenSinceStays) {
    folder_.MakeFile("a.mp3", "soundOWN");
    const std::int64_t time = TimeOf(R"(D:\a.mp3)");
    const auto journal = StartedRun();
    journal->Note(TagWritten(1, R"(D:\a.mp3)"));
    journal->Note(TagWritten(2, R"(D:\gone.mp3)"));
    PutRight();
    EXPECT_EQ(folder_.Content("a.mp3"), "soundOWN");
    EXPECT_EQ(TimeOf(R"(D:\a.mp3)"), time);
    EXPECT_THAT(notes_, IsEmpty());
}

/// Its bytes are those of the old tag or of the one that the run before had written, each of them.
TEST_F(InterruptedWritesTest, AWholeTagThatLooksLikeAnEarlierOneInPartStays) {
    folder_.MakeFile("a.mp3", "soundOEW");
    const auto first = StartedRun();
    first->Note(TagWritten(1, R"(D:\a.mp3)"));
    const auto second = StartedRun();
    FileChange again = TagWritten(1, R"(D:\a.mp3)");
    again.before->bytes = "NEW";
    again.after->bytes = "OEW";
    second->Note(again);
    PutRight();
    EXPECT_EQ(folder_.Content("a.mp3"), "soundOEW");
}

TEST_F(InterruptedWritesTest, RunsThatEndedFailedOrGoOnAreLeftAlone) {
    folder_.MakeFile("a.mp3", "soundNLW");
    const auto failed = StartedRun();
    failed->Note(TagWritten(1, R"(D:\a.mp3)"));
    failed->Note(FileChangeFailed{.number = 1, .reason = "no"});
    PutRight();
    EXPECT_EQ(folder_.Content("a.mp3"), "soundNLW");
    const auto own = StartedRun();
    own->Note(TagWritten(1, R"(D:\a.mp3)"));
    PutRight(own->Stamp());
    EXPECT_EQ(folder_.Content("a.mp3"), "soundNLW");
    // One that came to its end has seen to those before it.
    StartedRun()->Remark(RunEnded{.outcome = "completed"});
    PutRight();
    EXPECT_EQ(folder_.Content("a.mp3"), "soundNLW");
    StartedRun()->Remark(RunEnded{.outcome = "nothing ran"});
    PutRight();
    EXPECT_EQ(folder_.Content("a.mp3"), "soundNLW");
}

TEST_F(InterruptedWritesTest, ARunThatCouldNotStartHidesNoneBeforeIt) {
    folder_.MakeFile("a.mp3", "soundNLW");
    const auto killed = StartedRun();
    killed->Note(TagWritten(1, R"(D:\a.mp3)"));
    StartedRun()->Remark(RunEnded{.outcome = "nothing ran"});
    PutRight();
    EXPECT_EQ(folder_.Content("a.mp3"), "soundOLD");
}

TEST_F(InterruptedWritesTest, ATagOnADriveThatIsAwayIsToldByEachRunAndPutRightOnceItIsBack) {
    folder_.MakeFile("here/b.mp3", "soundNLW");
    const std::string killed =
        KilledRun({R"(D:\usb\Alder\a.mp3)", R"(D:\here\b.mp3)", R"(D:\usb\Alder\c.mp3)"});
    for (int night = 1; night <= 3; ++night) {
        WholeRun();
        EXPECT_THAT(
            notes_,
            Contains(StrEq(R"(D:\usb\Alder\c.mp3 and 1 more cannot be found, and the tags may )"
                           "be damaged, since run " +
                           killed +
                           " was interrupted while it wrote them. Connect the drive: the next "
                           "run puts right what it finds there. If the files are gone for "
                           "good, delete Changes/" +
                           killed + ".jsonl")));
    }
    EXPECT_EQ(folder_.Content("here/b.mp3"), "soundOLD");
    // Another program's: only what the runs could not look at is looked at again.
    folder_.MakeFile("here/b.mp3", "soundNLW");
    folder_.MakeFile("usb/Alder/a.mp3", "soundOEW");
    folder_.MakeFile("usb/Alder/c.mp3", "soundNEW");
    WholeRun();
    EXPECT_THAT(notes_, ElementsAre(HasSubstr("c.mp3: what"), HasSubstr("a.mp3: what")));
    EXPECT_EQ(folder_.Content("usb/Alder/a.mp3"), "soundOLD");
    EXPECT_EQ(TimeOf(R"(D:\usb\Alder\c.mp3)"), OldTime);
    EXPECT_EQ(folder_.Content("here/b.mp3"), "soundNLW");
    folder_.MakeFile("usb/Alder/a.mp3", "soundOEW");
    WholeRun();
    EXPECT_THAT(notes_, IsEmpty());
    EXPECT_EQ(folder_.Content("usb/Alder/a.mp3"), "soundOEW");
}

TEST_F(InterruptedWritesTest, ARunThatIsKilledWhileTheDriveIsAwayForgetsNothing) {
    const std::string killed = KilledRun({R"(D:\usb\a.mp3)"});
    WholeRun();
    {
        const auto journal = StartedRun();
        PutRight(journal->Stamp());
        for (const WriteLeft& left : left_)
            journal->Remark(left);
    }
    PutRight();
    EXPECT_THAT(left_, ElementsAre(WriteLeft{killed, 1}));
    folder_.MakeFile("usb/a.mp3", "soundNLW");
    PutRight();
    EXPECT_EQ(folder_.Content("usb/a.mp3"), "soundOLD");
}

TEST_F(InterruptedWritesTest, AnEmptyMountPointTellsOfADriveThatIsAway) {
    folder_.MakeFile("host/Quillon.ini", "[NPFrame]\nLibraryRoot=D:\\Music\n");
    folder_.MakeFolder("Music");
    const std::string killed = KilledRun({R"(D:\Music\Alder\First Light\a.mp3)"});
    PutRight();
    EXPECT_THAT(left_, ElementsAre(WriteLeft{killed, 1}));
    EXPECT_THAT(notes_,
                ElementsAre(HasSubstr("a.mp3 cannot be found, and the tag may be damaged")));
    folder_.MakeFolder("Music/lost+found");
    PutRight();
    EXPECT_THAT(left_, ElementsAre(WriteLeft{killed, 1}));
}

/// Without the drive there would be no other music either.
TEST_F(InterruptedWritesTest, WhatWasRemovedFromALibraryThatIsThereIsNotAwaited) {
    folder_.MakeFile("host/Quillon.ini", "[NPFrame]\nLibraryRoot=D:\\Music\n");
    folder_.MakeFile("Music/Birch/Quiet/b.mp3", "sound");
    KilledRun({R"(D:\Music\Alder\First Light\a.mp3)", R"(D:\Music\Birch\Quiet\c.mp3)"});
    PutRight();
    EXPECT_THAT(left_, IsEmpty());
    EXPECT_THAT(notes_, IsEmpty());
}

TEST_F(InterruptedWritesTest, AFileThatCannotBeLookedAtIsLookedAtAgain) {
    folder_.MakeFolder("Music");
    std::filesystem::create_symlink("away", folder_ / "Music/a.mp3");
    KilledRun({R"(D:\Music\a.mp3)"});
    WholeRun();
    EXPECT_THAT(notes_, ElementsAre(HasSubstr("a.mp3 cannot be found")));
    folder_.MakeFile("Music/away", "soundNLW");
    WholeRun();
    EXPECT_EQ(folder_.Content("Music/away"), "soundOLD");
}

TEST_F(InterruptedWritesTest, WhoDeletesTheJournalIsToldNoMore) {
    const std::string killed = KilledRun({R"(D:\usb\a.mp3)"});
    WholeRun();
    std::filesystem::remove(folder_ / ("host/Changes/" + killed + ".jsonl"));
    PutRight();
    EXPECT_THAT(notes_, IsEmpty());
    EXPECT_THAT(left_, IsEmpty());
}

TEST_F(InterruptedWritesTest, AnUndoKeepsTheRunBehindItLooking) {
    folder_.MakeFile("host/Quillon.ini", "[NPFrame]\nNirvis_CDJ_DB=D:\\jukebox.mdb\n");
    const std::string killed = KilledRun({R"(D:\usb\a.mp3)"});
    {
        const auto journal = StartedRun();
        journal->Note(
            FileChange{.number = 1, .kind = FileChange::Kind::FolderMade, .path = "D:\\x"});
        journal->Remark(RunEnded{.outcome = "aborted"});
    }
    local_.reset();
    const ProgramResult undo = CallProgram({"undo", "--yes", "--host", folder_ / "host"});
    EXPECT_EQ(undo.status, 0) << undo.err;
    EXPECT_THAT(undo.out, HasSubstr(R"(D:\usb\a.mp3 cannot be found, and the tag may be damaged)"));
    local_ = std::make_unique<LocalHost>(folder_ / "host", [](LogKind, const std::string&) {});
    PutRight();
    EXPECT_THAT(left_, ElementsAre(WriteLeft{killed, 1}));
}

TEST_F(InterruptedWritesTest, ARealRunTellsItAndNotesItForTheNext) {
    folder_.MakeFile("Music/Birch/Quiet/b.mp3", "sound");
    local_.reset();
    std::filesystem::remove_all(folder_ / "host");
    const std::string host = folder_ / "host";
    ASSERT_EQ(CallProgram({"init", host, "--music", folder_ / "Music"}).status, 0);
    std::string settings = folder_.Content("host/host.ini");
    settings.insert(settings.find("[Drives]\n") + 9, "E=../usb\n");
    folder_.MakeFile("host/host.ini", settings);
    local_ = std::make_unique<LocalHost>(host, [](LogKind, const std::string&) {});
    KilledRun({R"(E:\a.mp3)"});
    local_.reset();
    for (int night = 1; night <= 2; ++night) {
        EXPECT_EQ(CallProgram({"run", "--quiet", "--host", host}).status, 1);
        EXPECT_THAT(folder_.Content("host/host.log"), HasSubstr(R"(E:\a.mp3 cannot be found)"));
        std::filesystem::remove(folder_ / "host/host.log");
    }
    folder_.MakeFile("usb/a.mp3", "soundNLW");
    EXPECT_EQ(CallProgram({"run", "--quiet", "--host", host}).status, 0);
    EXPECT_EQ(folder_.Content("usb/a.mp3"), "soundOLD");
}

}  // namespace
}  // namespace quillon
