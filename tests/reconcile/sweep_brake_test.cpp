#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reconcile/refresh_database.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// Two artists of two albums of two songs, with the limits that hold by themselves.
class SweepBrakeTest : public ::testing::Test {
  protected:
    SweepBrakeTest() {
        for (const char* const artist : {"Blue", "Red"}) {
            for (const char* const album : {"One", "Two"}) {
                for (const char* const song : {"a", "b"})
                    library.AddFile(PathOf(artist, album, song));
            }
        }
        library.Reconcile();
        library.run.counts = {};
        before = State();
    }

    static std::string PathOf(const std::string& artist, const std::string& album,
                              const std::string& song) {
        return artist + "\\" + album + "\\" + song + ".mp3";
    }

    void RemoveArtist(const char* artist) {
        for (const char* const album : {"One", "Two"}) {
            for (const char* const song : {"a", "b"})
                library.RemoveFile(PathOf(artist, album, song));
        }
    }

    std::vector<std::string> State() {
        std::vector<std::string> state = library.Rows("SELECT * FROM Albums ORDER BY ID");
        for (std::string& row : library.Rows("SELECT * FROM Tracks ORDER BY ID"))
            state.push_back(std::move(row));
        return state;
    }

    /// Reconciles; the brake must hold for this reason, and everything be as before.
    void ExpectBraked(const std::string& reason) {
        library.Reconcile();
        EXPECT_THAT(library.host.log,
                    ElementsAre(AllOf(StartsWith("Quillon: Nothing is removed: "),
                                      HasSubstr(reason), HasSubstr("--allow-removals"))));
        EXPECT_TRUE(library.run.removals.Braked());
        EXPECT_EQ(library.run.removals.Of(Removable::Tracks).count, 0U);
        EXPECT_EQ(library.run.counts.tracksRemoved, 0U);
        EXPECT_EQ(State(), before);
    }

    support::TestLibrary library;
    std::vector<std::string> before;
};

TEST_F(SweepBrakeTest, LetsGoWhatIsFewEnough) {
    RemoveArtist("Red");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Blue|One|2", "Blue|Two|2"));
    EXPECT_EQ(library.run.removals.Of(Removable::Tracks).count, 4U);
    EXPECT_THAT(library.run.removals.Of(Removable::Tracks).names,
                Contains(R"(D:\Music\Red\One\a.mp3)"));
    EXPECT_FALSE(library.run.removals.Braked());
}

TEST_F(SweepBrakeTest, HoldsWhereTheLibraryFolderIsEmpty) {
    RemoveArtist("Blue");
    RemoveArtist("Red");
    ExpectBraked(R"(8 tracks of 8 would go, and no music was found in D:\Music)");
}

TEST_F(SweepBrakeTest, HoldsWhereTheLibraryFolderHoldsOnlyWhatAFreshDiskHas) {
    RemoveArtist("Blue");
    RemoveArtist("Red");
    library.AddFile(R"(lost+found\readme\a.txt)");
    library.AddFile("cover.jpg");
    ExpectBraked(R"(no music was found in D:\Music)");
}

TEST_F(SweepBrakeTest, HoldsWhereTheRootIsOneLevelTooHigh) {
    support::TestLibrary other;
    other.AddFile(R"(Rock\Red\One\a.mp3)");
    other.run.settings.LibraryRoot = R"(D:\Music\Rock)";
    other.run.LibraryFolders = {{R"(D:\Music\Rock)", "Rock"}};
    other.Reconcile();
    other.run.settings.LibraryRoot = R"(D:\Music)";
    other.run.LibraryFolders = {{R"(D:\Music)", "Music"}};
    other.Reconcile();
    EXPECT_THAT(other.host.log, ElementsAre(HasSubstr(R"(no music was found in D:\Music)")));
    EXPECT_THAT(other.Tracks(), ElementsAre(R"(Rock\Red\One\a.mp3|a|1)"));
    EXPECT_EQ(other.run.counts.leftOut, 1U);
}

TEST_F(SweepBrakeTest, HoldsWhereTheRootIsOneLevelTooLow) {
    library.run.settings.LibraryRoot = R"(D:\Music\Blue)";
    library.run.LibraryFolders = {{R"(D:\Music\Blue)", "Blue"}};
    library.Reconcile();
    EXPECT_THAT(library.host.log,
                ElementsAre(HasSubstr("Nothing is removed: 8 tracks of 8 would go")));
    EXPECT_EQ(State(), before);
}

TEST_F(SweepBrakeTest, HoldsWhereOneOfSeveralRootsIsEmpty) {
    library.run.LibraryFolders.push_back({R"(E:\More)", "More"});
    library.files.AddFile(R"(E:\More\Violet\One\a.mp3)");
    library.Reconcile();
    before = State();
    library.files.DeleteFile(R"(E:\More\Violet\One\a.mp3)");
    ExpectBraked(R"(1 track of 9 would go, and no music was found in E:\More)");
}

TEST_F(SweepBrakeTest, DoesNotHoldForAnEmptyRootThatNeverHadMusic) {
    library.run.LibraryFolders.push_back({R"(E:\More)", "More"});
    library.files.AddFolder(R"(E:\More)");
    library.RemoveFile(R"(Red\One\a.mp3)");
    library.Reconcile();
    EXPECT_EQ(library.run.counts.tracksRemoved, 1U);
    EXPECT_FALSE(library.run.removals.Braked());
}

TEST_F(SweepBrakeTest, DoesNotHoldWhereARootHasExcludedArtistsAlone) {
    library.run.ExcludeEmpty = false;
    library.run.ExcludeList = {"blue", "red"};
    library.Reconcile();
    EXPECT_THAT(library.Albums(), IsEmpty());
    EXPECT_FALSE(library.run.removals.Braked());
}

TEST_F(SweepBrakeTest, HoldsForTracksThatLieInNoLibraryFolder) {
    library.AddAlbumRow("252E671073EC0900", "Violet", "One", 1);
    library.AddTrackRow("252E671073EC0900", 1, R"(E:\Music\Violet\One\a.mp3)");
    before = State();
    ExpectBraked("1 track of 9 would go, and 1 of them lies in none of the library folders");
}

TEST_F(SweepBrakeTest, HoldsWhereBothLimitsArePassed) {
    library.run.removals.limits.MaxRemovedTracks = 3;
    library.run.removals.limits.MaxRemovedPercent = 49;
    RemoveArtist("Red");
    ExpectBraked("4 tracks of 8 would go, beyond MaxRemovedTracks=3 and MaxRemovedPercent=49");
}

TEST_F(SweepBrakeTest, DoesNotHoldWhereOnlyOneLimitIsPassed) {
    library.run.removals.limits.MaxRemovedTracks = 3;
    library.run.removals.limits.MaxRemovedPercent = 50;
    RemoveArtist("Red");
    library.Reconcile();
    EXPECT_EQ(library.run.counts.tracksRemoved, 4U);
}

TEST_F(SweepBrakeTest, DoesNotHoldWithLeave) {
    RemoveArtist("Blue");
    RemoveArtist("Red");
    library.run.removals.allAllowed = true;
    library.Reconcile();
    EXPECT_THAT(library.Albums(), IsEmpty());
    EXPECT_THAT(library.Tracks(), IsEmpty());
    EXPECT_EQ(library.run.removals.Of(Removable::Tracks).count, 8U);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(SweepBrakeTest, DoesNotHoldWhenItIsSwitchedOff) {
    RemoveArtist("Blue");
    RemoveArtist("Red");
    library.run.removals.limits.Brake = false;
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), IsEmpty());
}

/// What an earlier phase has not been allowed stops this one, too.
TEST_F(SweepBrakeTest, HoldsForTheRunOnceItHasHeld) {
    RemoveArtist("Red");
    library.run.removals.Allow(library.run,
                               {.kind = Removable::Playlists, .names = {"x"}, .doubt = "doubtful"});
    library.host.log.clear();
    library.Reconcile();
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_EQ(State(), before);
}

TEST_F(SweepBrakeTest, CountsNoNumberAsChangedThatIsGivenBack) {
    library.run.removals.limits.MaxRemovedTracks = 0;
    library.run.removals.limits.MaxRemovedPercent = 0;
    library.RemoveFile(R"(Red\One\a.mp3)");
    library.Reconcile();
    EXPECT_TRUE(library.run.removals.Braked());
    EXPECT_EQ(library.run.counts.tracksChanged, 0U);
    EXPECT_EQ(library.run.counts.albumsChanged, 0U);
    EXPECT_EQ(library.run.counts.tracksUnchanged, 7U);
    EXPECT_EQ(library.run.counts.albumsUnchanged, 4U);
}

TEST_F(SweepBrakeTest, AsksForTheDuplicatesToo) {
    library.run.removals.limits.MaxRemovedTracks = 3;
    library.run.removals.limits.MaxRemovedPercent = 10;
    library.Execute("UPDATE Albums SET CDJID='252E671073EC0001' WHERE CDJID='252E671073EC0002'");
    library.Execute("UPDATE Tracks SET CDJID='252E671073EC0001' WHERE CDJID='252E671073EC0002'");
    before = State();
    ExpectBraked("4 tracks of 8 would go");
}

TEST_F(SweepBrakeTest, TellsOfEachAlbumAndOfTracksOfAlbumsThatStay) {
    library.RemoveFile(R"(Blue\One\a.mp3)");
    library.RemoveFile(R"(Red\Two\a.mp3)");
    library.RemoveFile(R"(Red\Two\b.mp3)");
    library.AddAlbumRow("252E671073EC0900", "Violet", "Bare", 1);
    library.Reconcile();
    EXPECT_THAT(
        library.host.log,
        ElementsAre(R"(Quillon: Album removed, its files were not found: Red\Two, 2 tracks)",
                    R"(Quillon: Album removed, its files were not found: Violet\Bare)",
                    R"(Quillon: Track removed, its file was not found: )"
                    R"(D:\Music\Blue\One\a.mp3)"));
    EXPECT_EQ(library.run.counts.errors, 0U);
}

TEST_F(SweepBrakeTest, TellsOfNothingThatIsStillThere) {
    RemoveArtist("Red");
    library.Database().Refuse("Delete Tracks");
    library.Reconcile();
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Delete Missing Tracks Error: Line 0 refused"));
    EXPECT_EQ(library.run.removals.Of(Removable::Tracks).count, 0U);
}

TEST_F(SweepBrakeTest, TellsOfTheTracksWhereTheirAlbumsCannotBeRemoved) {
    RemoveArtist("Red");
    library.Database().Refuse("Delete Albums");
    library.Reconcile();
    EXPECT_THAT(library.host.log, SizeIs(5));
    EXPECT_THAT(library.host.log, Contains(StartsWith("Quillon: Track removed")).Times(4));
}

}  // namespace
}  // namespace quillon
