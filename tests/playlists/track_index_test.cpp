#include "playlists/track_index.h"

#include "database/snapshot_file.h"
#include "tests/playlists/playlist_fixture.h"

namespace quillon {
namespace {

using TrackIndexTest = PlaylistTest;

TEST_F(TrackIndexTest, FindsTracksByPlaceAndByKey) {
    const TrackIndex tracks(*run().connection);
    ASSERT_NE(tracks.FindPlace("B0", 2), nullptr);
    EXPECT_EQ(tracks.FindPlace("B0", 2)->id, 5);
    EXPECT_EQ(tracks.FindPlace("B0", 2)->traits.soundFile, Fingerprint(R"(\Music\B0\Five.mp3)"));
    EXPECT_EQ(tracks.FindPlace("B0", 4), nullptr);
    EXPECT_EQ(tracks.FindPlace("C0", 1), nullptr);
    ASSERT_NE(tracks.FindId(6), nullptr);
    EXPECT_EQ(tracks.FindId(6)->number, 3);
    EXPECT_EQ(tracks.Cdjid(*tracks.FindId(6)), "B0");
    EXPECT_EQ(tracks.FindId(7), nullptr);
    EXPECT_TRUE(tracks.HasAlbum("A0"));
    EXPECT_FALSE(tracks.HasAlbum("A"));
    EXPECT_FALSE(tracks.HasAlbum(""));
}

TEST_F(TrackIndexTest, KnowsARowAgainByItsFileOrItsOrigin) {
    library.Execute("UPDATE Tracks SET DateAdded=#1/2/2026# WHERE ID=5");
    const SongTraits before = TrackIndex(*run().connection).FindId(5)->traits;
    const auto fitsNow = [&] {
        return TrackIndex(*run().connection).FindId(5)->traits.Fit(before);
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
    EXPECT_EQ(TrackIndex(*run().connection).FindPlace("b0", 2)->id, 5);
}

TEST_F(TrackIndexTest, GivesAPlaceThatIsTakenTwiceToTheFirstRow) {
    library.AddTrackRow("B0", 2, TestFile("B0", "Other"), "Other");
    EXPECT_EQ(TrackIndex(*run().connection).FindPlace("B0", 2)->id, 5);
}

TEST_F(TrackIndexTest, LeavesOutRowsOfNoAlbumAndKnowsThoseWithoutNumber) {
    library.Execute("INSERT INTO Tracks (Title, Track) VALUES ('Homeless', 1)");
    library.Execute("INSERT INTO Tracks (Title, CDJID) VALUES ('Uncounted', 'B0')");
    const TrackIndex tracks(*run().connection);
    EXPECT_EQ(tracks.FindId(7), nullptr);
    ASSERT_NE(tracks.FindId(8), nullptr);
    EXPECT_EQ(tracks.FindId(8)->number, 0);
}

TEST_F(TrackIndexTest, IsEmptyWhereThereAreNoTracks) {
    EXPECT_FALSE(TrackIndex(*run().connection).IsEmpty());
    library.Execute("DELETE * FROM Tracks");
    EXPECT_TRUE(TrackIndex(*run().connection).IsEmpty());
}

/// The look-ups of a phase must not ask the database at all.
TEST_F(TrackIndexTest, AsksTheDatabaseOnce) {
    library.Database().ForgetStatements();
    const TrackIndex tracks(*run().connection);
    for (int i = 0; i < 100; ++i)
        tracks.FindPlace("B0", i);
    EXPECT_EQ(library.Database().Count(""), 1U);
}

}  // namespace
}  // namespace quillon
