#include <fstream>

#include "tests/outside/posix_test.h"
#include "tests/reconcile/moved_fixture.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

class MissingKeptTest : public MovedMusicFixture {
  protected:
    /// Two albums whose rows wait 14 days for their files; they do not follow them.
    MissingKeptTest() {
        library.run.movedMusic = {.FollowMovedFiles = false, .KeepDays = 14};
        AddAlbum(R"(Red\One)", "one");
        AddAlbum(R"(Red\Two)", "two");
        Start();
    }

    void Hide(const std::string& path) { Move(path, "../away/" + path); }
    void Bring(const std::string& path) { Move("../away/" + path, path); }
    void PassDays(int days) { library.clock.now.days += days; }
};

TEST_F(MissingKeptTest, TracksWaitOutsideTheirAlbumsNumbers) {
    Hide(R"(Red\One\02 - Bay.mp3)");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Red|One|2", "200|Red|Two|3"));
    EXPECT_THAT(Tracks(), Contains(R"(10|Red\One\01 - Ash.mp3|Ash|1)"));
    EXPECT_THAT(Tracks(), Contains(R"(20|Red\One\02 - Bay.mp3|Bay|0)"));
    EXPECT_THAT(Tracks(), Contains(R"(30|Red\One\03 - Cam.mp3|Cam|2)"));
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Track is missing, it is kept for 14 days: )"
                                   R"(D:\Music\Red\One\02 - Bay.mp3)"));
    EXPECT_EQ(library.run.counts.tracksRemoved, 0U);
    EXPECT_EQ(library.run.removals.Of(Removable::Tracks).count, 0U);

    Log().clear();
    const auto rows = library.Rows("SELECT * FROM Tracks ORDER BY ID");
    PassDays(1);
    Reconcile();
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), rows);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(MissingKeptTest, DuplicatesThatTheRunItselfHasRemovedDoNotWait) {
    Hide(R"(Red\One\02 - Bay.mp3)");
    library.run.removals.Note(Removable::MusicFiles, R"(D:\Music\Red\One\02 - BAY.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(), Not(Contains(HasSubstr(R"(One\02)"))));
    EXPECT_EQ(library.run.removals.Of(Removable::Tracks).count, 1U);
    EXPECT_FALSE(fs::exists(Missing()));
}

TEST_F(MissingKeptTest, TracksThatReturnHaveTheirRowsAgain) {
    Hide(R"(Red\One\02 - Bay.mp3)");
    Reconcile();
    Log().clear();
    Bring(R"(Red\One\02 - Bay.mp3)");
    PassDays(5);
    Reconcile();
    EXPECT_THAT(Tracks(), Contains(R"(20|Red\One\02 - Bay.mp3|Bay|2)"));
    EXPECT_THAT(Albums(), ElementsAre("100|Red|One|3", "200|Red|Two|3"));
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Track is back: D:\Music\Red\One\02 - Bay.mp3)"));
    EXPECT_FALSE(fs::exists(Missing()));
}

TEST_F(MissingKeptTest, AlbumsWaitAndReturnWhole) {
    const auto albums = library.Rows("SELECT * FROM Albums ORDER BY ID");
    const auto tracks = library.Rows("SELECT * FROM Tracks ORDER BY ID");
    Hide(R"(Red\One)");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Red|One|0", "200|Red|Two|3"));
    EXPECT_THAT(Tracks(), SizeIs(6));
    EXPECT_THAT(Log(), ElementsAre("Quillon: Album is missing, it is kept for 14 days: Red\\One, "
                                   "3 tracks"));
    Log().clear();
    PassDays(13);
    Reconcile();
    EXPECT_THAT(Log(), IsEmpty());
    Bring(R"(Red\One)");
    Reconcile();
    EXPECT_THAT(Log(), ElementsAre("Quillon: Album is back: Red\\One, 3 tracks"));
    EXPECT_EQ(library.Rows("SELECT * FROM Albums ORDER BY ID"), albums);
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), tracks);
}

/// Files of one age are told apart by their numbers of before alone.
TEST_F(MissingKeptTest, TracksOfOneAgeReturnToTheirNumbers) {
    Add(R"(Red\Old\a.mp3)", "a");
    Add(R"(Red\Old\b.mp3)", "b");
    Reconcile();
    library.Database().Execute("UPDATE Tracks SET Track = 3 - Track WHERE SoundFile Like '%Old%'");
    Reconcile();
    const auto before = Tracks();
    ASSERT_THAT(before, Contains(R"(0|Red\Old\a.mp3|a|2)"));
    Hide(R"(Red\Old)");
    Reconcile();
    Bring(R"(Red\Old)");
    Reconcile();
    EXPECT_EQ(Tracks(), before);
}

TEST_F(MissingKeptTest, AlbumsGoWhenTheirTimeIsOver) {
    Hide(R"(Red\One)");
    Reconcile();
    Log().clear();
    PassDays(14);
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("200|Red|Two|3"));
    EXPECT_THAT(Tracks(), SizeIs(3));
    EXPECT_THAT(
        Log(),
        ElementsAre(R"(Quillon: Album removed, its files were not found: Red\One, 3 tracks)"));
    EXPECT_FALSE(fs::exists(Missing()));
}

TEST_F(MissingKeptTest, MusicIsNoLossForTheBrake) {
    library.run.removals.limits = {.MaxRemovedTracks = 0, .MaxRemovedPercent = 0};
    Hide(R"(Red\One)");
    Reconcile();
    EXPECT_FALSE(library.run.removals.Braked());
    EXPECT_THAT(Albums(), Contains("100|Red|One|0"));
    // When its time is over it is.
    PassDays(14);
    Reconcile();
    EXPECT_TRUE(library.run.removals.Braked());
    EXPECT_THAT(Albums(), Contains("100|Red|One|0"));
}

TEST_F(MissingKeptTest, MusicOfADriveThatIsAwayStaysAsItIs) {
    const auto albums = Albums();
    const auto tracks = Tracks();
    Hide("Red");
    Reconcile();
    EXPECT_TRUE(library.run.removals.Braked());
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("no music was found in D:\\Music")));
    EXPECT_EQ(Albums(), albums);
    EXPECT_EQ(Tracks(), tracks);
    EXPECT_FALSE(fs::exists(Missing()));
}

TEST_F(MissingKeptTest, MusicThatWaitsIsNoDoubtInLaterRuns) {
    library.run.removals.allAllowed = true;
    Hide("Red");
    Reconcile();
    library.run.removals.allAllowed = false;
    Log().clear();
    PassDays(1);
    Reconcile();
    EXPECT_FALSE(library.run.removals.Braked());
    EXPECT_THAT(Log(), IsEmpty());
}

POSIX_TEST_F(MissingKeptTest, MusicDoesNotExpireWhereItsFolderIsOutOfSight) {
    Hide(R"(Red\One\02 - Bay.mp3)");
    Reconcile();
    const auto rows = library.Rows("SELECT * FROM Tracks ORDER BY ID");
    PassDays(20);
    const bool isWell = support::RunsWellUnprivileged(library.Folder(), [&] {
        fs::permissions(library.Music("Red"), fs::perms::none);
        Reconcile();
        fs::permissions(library.Music("Red"), fs::perms::owner_all);
        EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), rows);
    });
    EXPECT_TRUE(isWell);
}

TEST_F(MissingKeptTest, MusicIsFoundAgainElsewhere) {
    library.run.movedMusic.FollowMovedFiles = true;
    Reconcile();
    Hide(R"(Red\One)");
    Reconcile();
    Log().clear();
    fs::rename(library.Music("../away/Red/One"), library.Music(R"(Red\Three)"));
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Red|Three|3", "200|Red|Two|3"));
    EXPECT_THAT(Tracks(), Contains(R"(20|Red\Three\02 - Bay.mp3|Bay|2)"));
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("Album followed to its new place"),
                                   HasSubstr("Album is back: Red\\Three, 3 tracks")));
}

TEST_F(MissingKeptTest, MusicCountsItsDaysAnewWhereTheRecordIsDamaged) {
    Hide(R"(Red\One)");
    Reconcile();
    Log().clear();
    std::ofstream(Missing()) << "Quillon missing music 1\r\nSong 1";
    PassDays(14);
    Reconcile();
    EXPECT_THAT(Log(), Contains(HasSubstr("missing music is damaged, and is made anew")));
    EXPECT_THAT(Tracks(), SizeIs(6));
    PassDays(14);
    Reconcile();
    EXPECT_THAT(Tracks(), SizeIs(3));
}

/// Another song gets the name of a file that is missing.
TEST_F(MissingKeptTest, TracksLeaveTheirFilesNameToOthers) {
    Hide(R"(Red\One\02 - Bay.mp3)");
    Reconcile();
    library.Database().Execute(
        R"(UPDATE Tracks SET SoundFile='D:\Music\Red\One\02 - Bay.mp3' WHERE TimesPlayed=30)");
    Move(R"(Red\One\03 - Cam.mp3)", R"(Red\One\02 - Bay.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(), Contains(R"(20|Red\One\02 - Bay.mp3|Bay|0)"));
    EXPECT_THAT(Tracks(), Contains(R"(30|Red\One\02 - Bay.mp3|Bay|2)"));
}

TEST_F(MissingKeptTest, NothingIsSweptWhereTheRecordCannotBeWritten) {
    const auto tracks = Tracks();
    fs::create_directory(Missing());
    Hide(R"(Red\One)");
    Reconcile();
    EXPECT_EQ(Tracks(), tracks);
    EXPECT_THAT(Log(), Not(IsEmpty()));
}

TEST_F(MissingKeptTest, RowsGoAtOnceWhereNothingIsKept) {
    library.run.movedMusic.KeepDays = 0;
    Hide(R"(Red\One)");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("200|Red|Two|3"));
    EXPECT_FALSE(fs::exists(Missing()));
}

}  // namespace
}  // namespace quillon
