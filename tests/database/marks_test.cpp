#include "database/marks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/remove_duplicates.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* AllAlbums = "SELECT CDJID, Tracks FROM Albums ORDER BY ID";
constexpr const char* AllTracks = "SELECT CDJID, Track FROM Tracks ORDER BY ID";

/// Two owned albums of two and one tracks, with numbers that are not the ones a walk would give.
class MarksTest : public ::testing::Test {
  protected:
    MarksTest() {
        library.AddAlbumRow("252E671073EC0001", "A", "One", 5);
        library.AddTrackRow("252E671073EC0001", 4, R"(D:\Music\A\One\1.mp3)");
        library.AddTrackRow("252E671073EC0001", 2, R"(D:\Music\A\One\2.mp3)");
        library.AddAlbumRow("252E671073EC0002", "A", "Two", 1);
        library.AddTrackRow("252E671073EC0002", 1, R"(D:\Music\A\Two\3.mp3)");
        before = State();
    }

    std::vector<std::string> State() {
        std::vector<std::string> state = library.Rows(AllAlbums);
        for (std::string& row : library.Rows(AllTracks))
            state.push_back(std::move(row));
        return state;
    }

    std::string SnapshotPath() const {
        return MarkSnapshotPath(library.run.settings.Nirvis_CDJ_DB);
    }

    support::TestLibrary library;
    std::vector<std::string> before;
};

TEST_F(MarksTest, LieBesideTheDatabase) {
    EXPECT_EQ(MarkSnapshotPath(R"(D:\Data\cdj.mdb)"), R"(D:\Data\cdj.mdb.marks)");
}

TEST_F(MarksTest, AreGivenBackAndTheSnapshotGoes) {
    EXPECT_FALSE(MarkSnapshotExists(library.run));
    RemoveDuplicates(library.run);
    EXPECT_TRUE(MarkSnapshotExists(library.run));
    EXPECT_THAT(library.Rows(AllTracks),
                ElementsAre("252E671073EC0001|0", "252E671073EC0001|0", "252E671073EC0002|0"));
    RestoreMarks(library.run);
    EXPECT_EQ(State(), before);
    EXPECT_FALSE(MarkSnapshotExists(library.run));
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(MarksTest, AreGivenBackByTheNextRunAfterThisOneWasKilled) {
    RemoveDuplicates(library.run);
    library.ReopenDatabase();
    RestoreMarks(library.run);
    EXPECT_EQ(State(), before);
}

TEST_F(MarksTest, GiveNullBack) {
    library.Execute("UPDATE Albums SET Tracks = Null WHERE CDJID='252E671073EC0002'");
    library.Execute("UPDATE Tracks SET Track = Null WHERE CDJID='252E671073EC0002'");
    before = State();
    RemoveDuplicates(library.run);
    RestoreMarks(library.run);
    EXPECT_EQ(State(), before);
}

TEST_F(MarksTest, ChangeNothingWithoutASnapshot) {
    RestoreMarks(library.run);
    EXPECT_EQ(State(), before);
    EXPECT_EQ(library.Database().Count("Flush"), 0U);
}

TEST_F(MarksTest, AreDurableBeforeTheSnapshotGoes) {
    RemoveDuplicates(library.run);
    library.calls.Refuse("DeleteFile " + SnapshotPath(), FailureNumber::PermissionDenied, "x");
    EXPECT_THROW(RestoreMarks(library.run), Failure);
    EXPECT_EQ(library.Database().Count("Flush"), 1U);
    EXPECT_EQ(State(), before);
}

TEST_F(MarksTest, StayWhenTheDatabaseCannotBeMadeDurable) {
    RemoveDuplicates(library.run);
    library.Database().Refuse("Flush");
    EXPECT_THROW(RestoreMarks(library.run), Failure);
    EXPECT_TRUE(MarkSnapshotExists(library.run));
}

TEST_F(MarksTest, GiveNumbersBackThatAWalkHasChanged) {
    RemoveDuplicates(library.run);
    library.Execute("UPDATE Albums SET Tracks = 2 WHERE CDJID='252E671073EC0001'");
    library.Execute(R"(UPDATE Tracks SET Track = 1 WHERE SoundFile='D:\Music\A\One\1.mp3')");
    RestoreMarks(library.run);
    EXPECT_EQ(State(), before);
}

TEST_F(MarksTest, BringATrackBackToItsAlbum) {
    RemoveDuplicates(library.run);
    library.Execute(
        "UPDATE Tracks SET CDJID='252E671073EC0002', Track = 2 "
        R"(WHERE SoundFile='D:\Music\A\One\1.mp3')");
    RestoreMarks(library.run);
    EXPECT_EQ(State(), before);
}

TEST_F(MarksTest, LeaveAMovedTrackWhereItsOldAlbumIsGone) {
    RemoveDuplicates(library.run);
    library.Execute("UPDATE Tracks SET CDJID='252E671073EC0002' WHERE CDJID='252E671073EC0001'");
    library.Execute("DELETE * FROM Albums WHERE CDJID='252E671073EC0001'");
    RestoreMarks(library.run);
    EXPECT_THAT(library.Rows(AllAlbums), ElementsAre("252E671073EC0002|1"));
    // The album's own track keeps its number, the others take free ones.
    EXPECT_THAT(library.Rows(AllTracks),
                ElementsAre("252E671073EC0002|2", "252E671073EC0002|3", "252E671073EC0002|1"));
}

TEST_F(MarksTest, MakeNumbersOfNewRowsYieldWhereTheyWouldBeTakenTwice) {
    RemoveDuplicates(library.run);
    library.AddTrackRow("252E671073EC0001", 2, R"(D:\Music\A\One\new 2.mp3)");
    library.AddTrackRow("252E671073EC0001", 7, R"(D:\Music\A\One\new 7.mp3)");
    library.AddTrackRow("252E671073EC0001", -1, R"(D:\Music\A\One\new waiting.mp3)");
    RestoreMarks(library.run);
    EXPECT_THAT(library.Rows("SELECT Track FROM Tracks WHERE CDJID='252E671073EC0001' ORDER BY ID"),
                ElementsAre("4", "2", "1", "7", "3"));
}

TEST_F(MarksTest, KeepNewAlbumsAsTheyAre) {
    RemoveDuplicates(library.run);
    library.AddAlbumRow("252E671073EC0003", "B", "New", 2);
    library.AddTrackRow("252E671073EC0003", 2, R"(D:\Music\B\New\2.mp3)");
    library.AddTrackRow("252E671073EC0003", 1, R"(D:\Music\B\New\1.mp3)");
    RestoreMarks(library.run);
    EXPECT_THAT(library.Rows("SELECT Tracks FROM Albums WHERE CDJID='252E671073EC0003'"),
                ElementsAre("2"));
    EXPECT_THAT(library.Rows("SELECT Track FROM Tracks WHERE CDJID='252E671073EC0003' ORDER BY ID"),
                ElementsAre("2", "1"));
}

TEST_F(MarksTest, SkipRowsThatHaveGone) {
    RemoveDuplicates(library.run);
    library.Execute(R"(DELETE * FROM Tracks WHERE SoundFile='D:\Music\A\One\1.mp3')");
    RestoreMarks(library.run);
    EXPECT_THAT(library.Rows(AllTracks), ElementsAre("252E671073EC0001|2", "252E671073EC0002|1"));
}

TEST_F(MarksTest, LeaveRowsAloneThatAReplacedDatabaseHasUnderTheSameIds) {
    RemoveDuplicates(library.run);
    library.Execute(
        "UPDATE Albums SET CDJID='252E671073EC0009', Tracks=3 WHERE CDJID='252E671073EC0002'");
    library.Execute(
        "UPDATE Tracks SET CDJID='252E671073EC0009', SoundFile='D:\\other.mp3', Track=3 "
        "WHERE CDJID='252E671073EC0002'");
    RestoreMarks(library.run);
    EXPECT_THAT(library.Rows(AllAlbums), ElementsAre("252E671073EC0001|5", "252E671073EC0009|3"));
    EXPECT_THAT(library.Rows(AllTracks),
                ElementsAre("252E671073EC0001|4", "252E671073EC0001|2", "252E671073EC0009|3"));
}

TEST_F(MarksTest, TakeNothingFromADamagedSnapshotAndRemoveIt) {
    library.files.AddFile(SnapshotPath(), "Quillon mark snapshot 1\r\nAlbum 1 9");
    RestoreMarks(library.run);
    EXPECT_EQ(State(), before);
    EXPECT_FALSE(MarkSnapshotExists(library.run));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Mark snapshot is damaged, nothing is taken from it: " +
                            SnapshotPath()));
}

TEST_F(MarksTest, OfAnEarlierRunAreGivenBackBeforeNewOnesAreTaken) {
    RemoveDuplicates(library.run);
    RemoveDuplicates(library.run);
    RestoreMarks(library.run);
    EXPECT_EQ(State(), before);
}

TEST_F(MarksTest, AreOverWhenTheSnapshotIsDiscarded) {
    RemoveDuplicates(library.run);
    DiscardMarkSnapshot(library.run);
    EXPECT_FALSE(MarkSnapshotExists(library.run));
    EXPECT_EQ(library.Database().Count("Flush"), 1U);
    RestoreMarks(library.run);
    EXPECT_THAT(library.Rows(AllAlbums), ElementsAre("252E671073EC0001|0", "252E671073EC0002|0"));
}

TEST_F(MarksTest, ComeBackBelowAnArtistFolder) {
    RemoveDuplicates(library.run);
    EXPECT_THAT(RestoreMarksBelow(library.run, {{R"(D:\Music\A)", "A", ""}}), ElementsAre(3U));
    EXPECT_EQ(State(), before);
    EXPECT_TRUE(MarkSnapshotExists(library.run));
}

TEST_F(MarksTest, ComeBackBelowARootWhateverItsLetterCaseOrTrailingBackslash) {
    for (const char* root : {R"(D:\Music)", R"(D:\Music\)", R"(d:\MUSIC)", "D:", R"(D:\)"}) {
        RemoveDuplicates(library.run);
        RestoreMarksBelow(library.run, {{root, "", ""}});
        EXPECT_EQ(State(), before) << root;
        DiscardMarkSnapshot(library.run);
    }
}

TEST_F(MarksTest, ComeBackBelowOneAlbumFolderAndNowhereElse) {
    RemoveDuplicates(library.run);
    RestoreMarksBelow(library.run, {{R"(D:\Music\A\Two)", "A", "Two"}});
    EXPECT_THAT(library.Rows(AllAlbums), ElementsAre("252E671073EC0001|0", "252E671073EC0002|1"));
    EXPECT_THAT(library.Rows(AllTracks),
                ElementsAre("252E671073EC0001|0", "252E671073EC0001|0", "252E671073EC0002|1"));
}

TEST_F(MarksTest, ComeBackForASingleFile) {
    RemoveDuplicates(library.run);
    RestoreMarksBelow(library.run, {{R"(D:\Music\A\One\2.mp3)", "A", "One"}});
    EXPECT_THAT(library.Rows(AllAlbums), ElementsAre("252E671073EC0001|5", "252E671073EC0002|0"));
    EXPECT_THAT(library.Rows(AllTracks),
                ElementsAre("252E671073EC0001|0", "252E671073EC0001|2", "252E671073EC0002|0"));
}

TEST_F(MarksTest, DoNotComeBackForAFolderWhoseNameOnlyBeginsAlike) {
    RemoveDuplicates(library.run);
    RestoreMarksBelow(library.run, {{R"(D:\Mus)", "Z", ""}, {R"(D:\Music\A\On)", "A", "On"}});
    EXPECT_THAT(library.Rows(AllTracks),
                ElementsAre("252E671073EC0001|0", "252E671073EC0001|0", "252E671073EC0002|0"));
}

TEST_F(MarksTest, ComeBackForAlbumsWithoutTracks) {
    library.AddAlbumRow("252E671073EC0003", "B", "Bare", 4);
    before = State();
    RemoveDuplicates(library.run);
    RestoreMarksBelow(library.run, {{R"(D:\Music)", "", ""}});
    EXPECT_EQ(State(), before);
    RestoreMarks(library.run);

    RemoveDuplicates(library.run);
    RestoreMarksBelow(library.run, {{R"(D:\Music\B\Bare)", "b", "BARE"}});
    EXPECT_THAT(library.Rows("SELECT Tracks FROM Albums WHERE Title='Bare'"), ElementsAre("4"));
}

/// The walk has counted what it saw; a track of the album that it did not see joins that.
TEST_F(MarksTest, DoNotOverwriteWhatTheWalkFoundButAddToIt) {
    RemoveDuplicates(library.run);
    library.Execute("UPDATE Albums SET Tracks = 9 WHERE CDJID='252E671073EC0001'");
    library.Execute(R"(UPDATE Tracks SET Track = 9 WHERE SoundFile='D:\Music\A\One\1.mp3')");
    RestoreMarksBelow(library.run, {{R"(D:\Music)", "", ""}});
    EXPECT_THAT(library.Rows(AllAlbums), ElementsAre("252E671073EC0001|10", "252E671073EC0002|1"));
    EXPECT_THAT(library.Rows(AllTracks),
                ElementsAre("252E671073EC0001|9", "252E671073EC0001|2", "252E671073EC0002|1"));
}

// The comparison of tags numbers rows before the walk comes to their folders.
TEST_F(MarksTest, ReplaceNumbersThatTheTagsGaveBelowAFolderThatTheWalkDidNotReach) {
    RemoveDuplicates(library.run);
    library.Execute(R"(UPDATE Tracks SET Track = -1 WHERE SoundFile='D:\Music\A\One\1.mp3')");
    library.Execute(R"(UPDATE Tracks SET Track = 9 WHERE SoundFile='D:\Music\A\One\2.mp3')");
    EXPECT_THAT(RestoreMarksBelow(library.run, {{R"(D:\Music\A)", "A", ""}}), ElementsAre(3U));
    EXPECT_EQ(State(), before);
}

TEST_F(MarksTest, AreGivenBackToATrackWhoseFileWasRenamedInItsFolder) {
    RemoveDuplicates(library.run);
    library.Execute(
        R"(UPDATE Tracks SET SoundFile='D:\Music\A\One\A - Tag.mp3', Title='Tag', Track=3 )"
        R"(WHERE SoundFile='D:\Music\A\One\1.mp3')");
    RestoreMarks(library.run);
    EXPECT_EQ(State(), before);
    EXPECT_THAT(library.Rows("SELECT SoundFile FROM Tracks WHERE Title='Tag'"),
                ElementsAre(R"(D:\Music\A\One\A - Tag.mp3)"));
}

TEST_F(MarksTest, TakeARenamedFileOfAnotherDateOfAdditionForAnotherRow) {
    library.Execute("UPDATE Tracks SET DateAdded=#2020-01-01#");
    RemoveDuplicates(library.run);
    library.Execute(
        R"(UPDATE Tracks SET SoundFile='D:\Music\A\One\other.mp3', DateAdded=#2021-01-01#, Track=3 )"
        R"(WHERE SoundFile='D:\Music\A\One\1.mp3')");
    RestoreMarks(library.run);
    EXPECT_THAT(library.Rows(AllTracks),
                ElementsAre("252E671073EC0001|3", "252E671073EC0001|2", "252E671073EC0002|1"));
}

TEST_F(MarksTest, ComeBackBelowAFolderForARenamedFile) {
    RemoveDuplicates(library.run);
    library.Execute(R"(UPDATE Tracks SET SoundFile='D:\Music\A\One\x (live).mp3' )"
                    R"(WHERE SoundFile='D:\Music\A\One\1.mp3')");
    RestoreMarksBelow(library.run, {{R"(D:\Music\A)", "A", ""}});
    EXPECT_EQ(State(), before);
}

// Otherwise the sweep would take rows for missing that another program left without a number.
TEST_F(MarksTest, BecomeFreeNumbersBelowAFolderWhereTheyWereZeroBefore) {
    library.Execute("UPDATE Albums SET Tracks = 0");
    library.Execute(R"(UPDATE Tracks SET Track = 0 WHERE SoundFile='D:\Music\A\One\1.mp3')");
    RemoveDuplicates(library.run);
    RestoreMarksBelow(library.run, {{R"(D:\Music)", "", ""}});
    EXPECT_THAT(library.Rows(AllAlbums), ElementsAre("252E671073EC0001|2", "252E671073EC0002|1"));
    EXPECT_THAT(library.Rows(AllTracks),
                ElementsAre("252E671073EC0001|1", "252E671073EC0001|2", "252E671073EC0002|1"));
}

TEST_F(MarksTest, BelowNoFolderChangeNothing) {
    RemoveDuplicates(library.run);
    RestoreMarksBelow(library.run, {});
    EXPECT_THAT(library.Rows(AllAlbums), ElementsAre("252E671073EC0001|0", "252E671073EC0002|0"));
}

}  // namespace
}  // namespace quillon
