#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/app/check_fixture.h"
#include "tests/support/sound_file.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

/// A library in which a second run finds nothing but that a tag says another genre.
class UndoCommand : public CheckFixture {
  protected:
    UndoCommand() {
        Set("ID3Reconcile", "1");
        support::RawTag tag;
        tag.song = "Dusk";
        tag.genre = 17;
        Write("Music/Alder/First Light/Alder - Dusk.mp3", support::SoundFile(tag));
    }
    void Run() const {
        const ProgramResult run = CallProgram({"run", "--quiet", "--host", Path("shelf")});
        ASSERT_EQ(run.status, 0) << run.err;
    }
    std::string List() const {
        return CallProgram({"changes", "--list", "--host", Path("shelf")}).out;
    }
};

TEST_F(UndoCommand, TakesARunBackThatOnlyMadeTheListOfDifferencesAnotherOne) {
    Run();
    Run();
    EXPECT_THAT(List(), HasSubstr(": completed, 1 change\n"));
    const ProgramResult undo = CallProgram({"undo", "--yes", "--host", Path("shelf")});
    EXPECT_EQ(undo.status, 0) << undo.err;
    EXPECT_THAT(undo.out, AllOf(HasSubstr("Differences between tags and database removed: 2\n"),
                                Not(HasSubstr("Tracks removed"))));
}

TEST_F(UndoCommand, SaysThatNothingWasTakenBackWhereItsJournalCannotBeStarted) {
    Run();
    const std::filesystem::path changes = Path("shelf/Changes"), moved = Path("Elsewhere");
    std::filesystem::rename(changes, moved);
    std::filesystem::create_directory_symlink(moved, changes);
    const ProgramResult undo = CallProgram({"undo", "--yes", "--host", Path("shelf")});
    EXPECT_EQ(undo.status, 2);
    EXPECT_THAT(
        undo.err,
        HasSubstr("Nothing was taken back, since the journal of changes cannot be started: "));
    EXPECT_THAT(List(), Not(HasSubstr("undo")));
}

TEST_F(UndoCommand, PassesOverRunsThatTheListShowsWithoutAChange) {
    Run();
    Run();
    Run();
    EXPECT_THAT(List(), HasSubstr(": completed, 0 changes\n"));
    const ProgramResult undo = CallProgram({"undo", "--yes", "--host", Path("shelf")});
    EXPECT_THAT(undo.out, AllOf(HasSubstr("Differences between tags and database removed: 2\n"),
                                Not(HasSubstr("Tracks removed"))));
}

}  // namespace
}  // namespace quillon
