#include "playlists/track_index.h"

#include "database/snapshot_file.h"
#include "tests/playlists/playlist_fixture.h"

namespace quillon {
namespace {

using TrackIndexTest = PlaylistTest;

TEST_F(TrackIndexTest, FindsTracksByPlaceAndByKey) {
    const TrackIndex tracks(run().TheLibrary());
    ASSERT_NE(tracks.FindPlace("B0", 2), nullptr);
    EXPECT_EQ(IdOf(*tracks.FindPlace("B0", 2)), 5);
    EXPECT_EQ(TraitsOf(*tracks.FindPlace("B0", 2)).soundFile, Fingerprint(R"(\Music\B0\Five.mp3)"));
    EXPECT_EQ(tracks.FindPlace("B0", 4), nullptr);
    EXPECT_EQ(tracks.FindPlace("C0", 1), nullptr);
    ASSERT_NE(tracks.FindId(6), nullptr);
    EXPECT_EQ(PlaceOf(*tracks.FindId(6)), 3);
    EXPECT_EQ(tracks.FindId(6)->cdjid, "B0");
    EXPECT_EQ(tracks.FindId(7), nullptr);
    EXPECT_TRUE(tracks.HasAlbum("A0"));
    EXPECT_FALSE(tracks.HasAlbum("A"));
    EXPECT_FALSE(tracks.HasAlbum(""));
}

TEST_F(TrackIndexTest, KnowsARowAgainByItsFileOrItsOrigin) {
    library.Execute("UPDATE Tracks SET DateAdded=#1/2/2026# WHERE ID=5");
    const SongTraits before = TraitsOf(*TrackIndex(run().TheLibrary()).FindId(5));
    const auto fitsNow = [&] {
        return TraitsOf(*TrackIndex(run().TheLibrary()).FindId(5)).Fit(before);
    };
    library.Execute(R"(UPDATE Tracks SET SoundFile='\\server\share\Music\B0\Five.mp3' WHERE ID=5)");
    EXPECT_TRUE(fitsNow()) << "another drive";
    library.Execute(R"(UPDATE Tracks SET SoundFile='D:\Music\B0\Renamed.mp3' WHERE ID=5)");
    EXPECT_TRUE(fitsNow()) << "renamed in its folder";
    library.Execute(R"(UPDATE Tracks SET SoundFile='D:\Music\C0\Renamed.mp3' WHERE ID=5)");
    EXPECT_FALSE(fitsNow()) << "another folder";
    library.Execute(R"(UPDATE Tracks SET SoundFile='D:\Music\B0\Other.mp3' WHERE ID=5)");
    library.Execute("UPDATE Tracks SET DateAdded=#1/3/2026# WHERE ID=5");
    EXPECT_FALSE(fitsNow()) << "added at another time";
}

TEST_F(TrackIndexTest, ComparesWithoutLetterCase) {
    EXPECT_EQ(IdOf(*TrackIndex(run().TheLibrary()).FindPlace("b0", 2)), 5);
}

TEST_F(TrackIndexTest, GivesAPlaceThatIsTakenTwiceToTheFirstRow) {
    library.AddTrackRow("B0", 2, TestFile("B0", "Other"), "Other");
    EXPECT_EQ(IdOf(*TrackIndex(run().TheLibrary()).FindPlace("B0", 2)), 5);
}

TEST_F(TrackIndexTest, LeavesOutRowsOfNoAlbumAndKnowsThoseWithoutNumber) {
    library.Execute("INSERT INTO Tracks (Title, Track) VALUES ('Homeless', 1)");
    library.Execute("INSERT INTO Tracks (Title, CDJID) VALUES ('Uncounted', 'B0')");
    const TrackIndex tracks(run().TheLibrary());
    EXPECT_EQ(tracks.FindId(7), nullptr);
    ASSERT_NE(tracks.FindId(8), nullptr);
    EXPECT_EQ(PlaceOf(*tracks.FindId(8)), 0);
}

TEST_F(TrackIndexTest, IsEmptyWhereThereAreNoTracks) {
    EXPECT_FALSE(TrackIndex(run().TheLibrary()).IsEmpty());
    library.Execute("DELETE * FROM Tracks");
    EXPECT_TRUE(TrackIndex(run().TheLibrary()).IsEmpty());
}

/// The look-ups of a phase must not ask the database at all.
TEST_F(TrackIndexTest, AsksTheDatabaseOnce) {
    library.Database().ForgetStatements();
    const TrackIndex tracks(run().TheLibrary());
    for (int i = 0; i < 100; ++i)
        tracks.FindPlace("B0", i);
    EXPECT_EQ(library.Database().Count("Scan Albums"), 1U);
    EXPECT_EQ(library.Database().Count("Scan Tracks"), 1U);
    EXPECT_EQ(library.Database().Count(""), 2U);
}

}  // namespace
}  // namespace quillon
