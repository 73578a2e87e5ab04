#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/undo/file_undo_fixture.h"

namespace quillon {
namespace {

using testing::HasSubstr;
using Kind = FileChange::Kind;
using State = Outcome::State;

TEST_F(FileUndoTest, RenamesAFileBackAndKeepsItsTime) {
    folder_.MakeFile("a.mp3", "song");
    SetModified("a.mp3", 1500000000);
    const FileChange change = Move(R"(D:\a.mp3)", R"(D:\b.mp3)");
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_EQ(folder_.Content("a.mp3"), "song");
    EXPECT_EQ(Modified("a.mp3").seconds, 1500000000);
    EXPECT_EQ(Modified("a.mp3").nanoseconds, 987654300);
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
}

TEST_F(FileUndoTest, RenamesAFileBackIntoAFolderThatIsGone) {
    folder_.MakeFile("Artist/Album/a.mp3", "song");
    const FileChange change = Move(R"(D:\Artist\Album\a.mp3)", R"(D:\b.mp3)");
    std::filesystem::remove_all(folder_ / "Artist");
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_EQ(folder_.Content("Artist/Album/a.mp3"), "song");
}

TEST_F(FileUndoTest, GivesNamesThatWentRoundInACircleBack) {
    folder_.MakeFile("a.mp3", "one");
    folder_.MakeFile("b.mp3", "three");
    const FileChange first = Move(R"(D:\a.mp3)", R"(D:\t.mp3)");
    const FileChange second = Move(R"(D:\b.mp3)", R"(D:\a.mp3)");
    const FileChange third = Move(R"(D:\t.mp3)", R"(D:\b.mp3)");
    for (const FileChange* const change : {&third, &second, &first})
        EXPECT_EQ(TakeBack(*change), Outcome{});
    EXPECT_EQ(folder_.Content("a.mp3"), "one");
    EXPECT_EQ(folder_.Content("b.mp3"), "three");
    EXPECT_FALSE(folder_.Exists("t.mp3"));
}

TEST_F(FileUndoTest, GivesANameItsOldLetterCaseBack) {
    folder_.MakeFile("dawn.mp3", "song");
    const FileChange change = Move(R"(D:\dawn.mp3)", R"(D:\Dawn.mp3)");
    EXPECT_EQ(FileNames("D:\\"), Names{"Dawn.mp3"});
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_EQ(FileNames("D:\\"), Names{"dawn.mp3"});
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
}

TEST_F(FileUndoTest, LeavesARenamedFileThatWasChangedSince) {
    folder_.MakeFile("a.mp3", "song");
    const FileChange change = Move(R"(D:\a.mp3)", R"(D:\b.mp3)");
    folder_.MakeFile("b.mp3", "another song");
    EXPECT_EQ(TakeBack(change), Outcome::Refusal("D:\\b.mp3 has been changed since"));
    EXPECT_EQ(folder_.Content("b.mp3"), "another song");
}

TEST_F(FileUndoTest, LeavesARenamedFileWhoseOldNameIsTaken) {
    folder_.MakeFile("a.mp3", "song");
    const FileChange change = Move(R"(D:\a.mp3)", R"(D:\b.mp3)");
    folder_.MakeFile("a.mp3", "a new file");
    EXPECT_EQ(TakeBack(change), Outcome::Refusal("there is another D:\\a.mp3 now"));
    EXPECT_EQ(folder_.Content("a.mp3"), "a new file");
    EXPECT_EQ(folder_.Content("b.mp3"), "song");
}

TEST_F(FileUndoTest, SaysWhereARenamedFileIsGone) {
    folder_.MakeFile("a.mp3", "song");
    const FileChange change = Move(R"(D:\a.mp3)", R"(D:\b.mp3)");
    std::filesystem::remove(folder_ / "b.mp3");
    EXPECT_EQ(TakeBack(change), Outcome::Refusal("D:\\b.mp3 is not there any more"));
}

TEST_F(FileUndoTest, WritesAPlaylistAsItWas) {
    folder_.MakeFile("Rock.pla", "repaired");
    const FileChange change{.kind = Kind::Written,
                            .path = R"(D:\Rock.pla)",
                            .before = Content("broken \xE9\r\n"),
                            .after = Content("repaired")};
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_EQ(folder_.Content("Rock.pla"), "broken \xE9\r\n");
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
}

TEST_F(FileUndoTest, GivesAPlaylistItsTimeBack) {
    folder_.MakeFile("Rock.pla", "broken");
    SetModified("Rock.pla", 1500000000);
    FileContent before = Content("broken");
    before.modified = Look(R"(D:\Rock.pla)").modified;
    for (const FileChange& change :
         {FileChange{.kind = Kind::Written,
                     .path = R"(D:\Rock.pla)",
                     .before = before,
                     .after = Content("repaired")},
          FileChange{.kind = Kind::Deleted, .path = R"(D:\Rock.pla)", .before = before}}) {
        std::filesystem::remove(folder_ / "Rock.pla");
        if (change.after) folder_.MakeFile("Rock.pla", "repaired");
        EXPECT_EQ(TakeBack(change), Outcome{});
        EXPECT_EQ(folder_.Content("Rock.pla"), "broken");
        EXPECT_EQ(Modified("Rock.pla").seconds, 1500000000);
    }
}

TEST_F(FileUndoTest, LeavesAPlaylistThatWasEditedSince) {
    folder_.MakeFile("Rock.pla", "edited");
    const FileChange change{.kind = Kind::Written,
                            .path = R"(D:\Rock.pla)",
                            .before = Content("broken"),
                            .after = Content("repaired")};
    EXPECT_EQ(TakeBack(change), Outcome::Refusal("D:\\Rock.pla has been changed since"));
    EXPECT_EQ(folder_.Content("Rock.pla"), "edited");
}

TEST_F(FileUndoTest, RemovesAPlaylistThatWasNotThere) {
    folder_.MakeFile("Rock.pla", "made");
    const FileChange change{
        .kind = Kind::Written, .path = R"(D:\Rock.pla)", .after = Content("made")};
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_FALSE(folder_.Exists("Rock.pla"));
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
    folder_.MakeFile("Rock.pla", "a list of the user's");
    EXPECT_EQ(TakeBack(change).state, State::Refused);
    EXPECT_EQ(folder_.Content("Rock.pla"), "a list of the user's");
}

TEST_F(FileUndoTest, BringsADeletedPlaylistBack) {
    const FileChange change{
        .kind = Kind::Deleted, .path = R"(D:\Lists\Rock.pla)", .before = Content("lines\r\n")};
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_EQ(folder_.Content("Lists/Rock.pla"), "lines\r\n");
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
}

TEST_F(FileUndoTest, BringsRemovedMusicBackWithItsTime) {
    folder_.MakeFile("host/Removed/now/D/Artist/a.mp3", "song");
    SetModified("host/Removed/now/D/Artist/a.mp3", 1500000000);
    FileContent kept = Look(R"(D:\host\Removed\now\D\Artist\a.mp3)");
    kept.keptAs = "Removed/now/D/Artist/a.mp3";
    const FileChange change{.kind = Kind::Deleted, .path = R"(D:\Artist\a.mp3)", .before = kept};
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_EQ(folder_.Content("Artist/a.mp3"), "song");
    EXPECT_EQ(Modified("Artist/a.mp3").seconds, 1500000000);
    EXPECT_EQ(Modified("Artist/a.mp3").nanoseconds, 987654300);
    EXPECT_FALSE(folder_.Exists("host/Removed/now/D/Artist/a.mp3"));
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
}

TEST_F(FileUndoTest, SaysWhatWasNotKept) {
    const FileChange thrownAway{
        .kind = Kind::Deleted, .path = R"(D:\a.mp3)", .before = FileContent{.size = 4}};
    EXPECT_THAT(TakeBack(thrownAway).reason, HasSubstr("has not been kept"));
    FileContent emptied{.size = 4};
    emptied.keptAs = "Removed/now/D/a.mp3";
    const FileChange gone{.kind = Kind::Deleted, .path = R"(D:\a.mp3)", .before = emptied};
    EXPECT_THAT(TakeBack(gone).reason, HasSubstr("has not been kept"));
}

TEST_F(FileUndoTest, LeavesMusicInRemovedWhereItsNameIsTaken) {
    folder_.MakeFile("host/Removed/now/D/a.mp3", "song");
    folder_.MakeFile("a.mp3", "another one");
    FileContent kept = Look(R"(D:\host\Removed\now\D\a.mp3)");
    kept.keptAs = "Removed/now/D/a.mp3";
    const FileChange change{.kind = Kind::Deleted, .path = R"(D:\a.mp3)", .before = kept};
    EXPECT_EQ(TakeBack(change), Outcome::Refusal("there is another D:\\a.mp3 now"));
    EXPECT_EQ(folder_.Content("host/Removed/now/D/a.mp3"), "song");
    EXPECT_EQ(folder_.Content("a.mp3"), "another one");
}

TEST_F(FileUndoTest, TakesACopyAwayThatIsStillTheSame) {
    folder_.MakeFile("source.mp3", "song");
    files_.CopyFile(R"(D:\source.mp3)", R"(D:\a.mp3)", false);
    const FileChange change{.kind = Kind::Copied,
                            .path = R"(D:\source.mp3)",
                            .target = R"(D:\a.mp3)",
                            .after = Look(R"(D:\source.mp3)")};
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_FALSE(folder_.Exists("a.mp3"));
    EXPECT_EQ(folder_.Content("source.mp3"), "song");
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
    folder_.MakeFile("a.mp3", "SONG");
    SetModified("a.mp3", 1500000000);
    EXPECT_EQ(TakeBack(change).state, State::Refused);
    EXPECT_EQ(folder_.Content("a.mp3"), "SONG");
}

TEST_F(FileUndoTest, BringsALargeFileBackThatWasReplaced) {
    folder_.MakeFile("host/Changes/now/1/big.jpg", "large image");
    folder_.MakeFile("big.jpg", "new");
    FileContent kept = Look(R"(D:\host\Changes\now\1\big.jpg)");
    kept.keptAs = "Changes/now/1/big.jpg";
    const FileChange change{.kind = Kind::Copied,
                            .path = R"(D:\other.jpg)",
                            .target = R"(D:\big.jpg)",
                            .before = kept,
                            .after = Look(R"(D:\big.jpg)")};
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_EQ(folder_.Content("big.jpg"), "large image");
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
}

TEST_F(FileUndoTest, LeavesAFileWhereWhatWasKeptIsNoLongerTheSame) {
    folder_.MakeFile("host/Changes/now/1/big.jpg", "something else");
    folder_.MakeFile("big.jpg", "new");
    FileContent kept{.size = 11};
    kept.keptAs = "Changes/now/1/big.jpg";
    const FileChange change{.kind = Kind::Written,
                            .path = R"(D:\big.jpg)",
                            .before = kept,
                            .after = Look(R"(D:\big.jpg)")};
    EXPECT_EQ(TakeBack(change).state, State::Refused);
    EXPECT_EQ(folder_.Content("big.jpg"), "new");
}

TEST_F(FileUndoTest, GoesOnWhereItWasCutOffBetweenTwoFiles) {
    folder_.MakeFile("host/Changes/now/1/big.jpg", "large image");
    FileContent kept = Look(R"(D:\host\Changes\now\1\big.jpg)");
    kept.keptAs = "Changes/now/1/big.jpg";
    const FileChange change{.kind = Kind::Written,
                            .path = R"(D:\big.jpg)",
                            .before = kept,
                            .after = FileContent{.size = 3}};
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_EQ(folder_.Content("big.jpg"), "large image");
}

TEST_F(FileUndoTest, BringsThePreviousSetOfPagesBack) {
    folder_.MakeFile("host/HTML/Picker/index.asp", "new");
    folder_.MakeFile("host/Changes/now/1/Picker.old/index.asp", "old");
    FileContent kept;
    kept.keptAs = "Changes/now/1/Picker.old";
    const std::string picker = R"(D:\host\HTML\Picker)";
    const FileChange made{.kind = Kind::FolderMade, .path = picker + ".new"};
    const FileChange page{
        .kind = Kind::Written, .path = picker + R"(.new\index.asp)", .after = Content("new")};
    const FileChange away{.kind = Kind::FolderMoved, .path = picker, .target = picker + ".old"};
    const FileChange in{.kind = Kind::FolderMoved, .path = picker + ".new", .target = picker};
    const FileChange gone{.kind = Kind::FolderDeleted, .path = picker + ".old", .before = kept};
    for (const FileChange* const change : {&gone, &in, &away, &page, &made})
        EXPECT_EQ(TakeBack(*change), Outcome{}) << change->path;
    EXPECT_EQ(folder_.Content("host/HTML/Picker/index.asp"), "old");
    EXPECT_EQ(folder_.Count("host/HTML"), 1U);
}

TEST_F(FileUndoTest, LeavesAFolderThatSomethingIsIn) {
    folder_.MakeFile("Artist/a.mp3", "song");
    const FileChange change{.kind = Kind::FolderMade, .path = R"(D:\Artist)"};
    EXPECT_EQ(TakeBack(change), Outcome::Refusal("there is something in D:\\Artist"));
    std::filesystem::remove(folder_ / "Artist/a.mp3");
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_FALSE(folder_.Exists("Artist"));
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
}

TEST_F(FileUndoTest, MakesAFolderAgainThatAnUndoHasTakenAway) {
    const FileChange discarded{
        .kind = Kind::Discarded, .path = R"(D:\Music\Birch)", .takesBack = "2026-11-21_07-13-05#4"};
    EXPECT_EQ(TakeBack(discarded).state, State::TakenBack);
    EXPECT_TRUE(files_.FolderExists(R"(D:\Music\Birch)"));
    EXPECT_EQ(TakeBack(discarded).state, State::WasSo);
}

TEST_F(FileUndoTest, HasNothingToDoWhereTheRunItselfTookBack) {
    const FileChange discarded{.kind = Kind::Discarded, .path = R"(D:\a.mp3)"};
    const FileChange made{
        .kind = Kind::FolderDeleted, .path = R"(D:\Picker.new)", .before = FileContent{}};
    EXPECT_EQ(TakeBack(discarded).state, State::WasSo);
    EXPECT_EQ(TakeBack(made).state, State::WasSo);
    EXPECT_EQ(folder_.Count(), 0U);
}

}  // namespace
}  // namespace quillon
