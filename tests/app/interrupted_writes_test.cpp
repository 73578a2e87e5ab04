#include "app/interrupted_writes.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/journal/journal_file.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

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
        PutInterruptedWritesRight(*local_, own, [this](LogKind, const std::string& message) {
            notes_.push_back(message);
        });
    }
    std::int64_t TimeOf(const std::string& path) { return local_->files.ExactTimeOf(path); }

    outside::TemporaryFolder folder_;
    std::unique_ptr<LocalHost> local_;
    std::vector<std::string> notes_;
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

}  // namespace
}  // namespace quillon
