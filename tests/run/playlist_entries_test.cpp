#include "run/playlist_entries.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillon {
namespace {

TEST(PlaylistEntries, KeepAllFieldsOfAnEntry) {
    PlaylistEntries entries;
    entries.Add({.ID = 1,
                 .Track = -1,
                 .Artist = "Ann",
                 .CDJID = "A0",
                 .Genre = "Folk",
                 .Playlist = "Mine.pla",
                 .Processed = 0,
                 .Random = 5});
    const PlaylistEntry entry = entries.At(0);
    EXPECT_EQ(entry.ID, 1);
    EXPECT_EQ(entry.Track, -1);
    EXPECT_EQ(entry.Artist, "Ann");
    EXPECT_EQ(entry.CDJID, "A0");
    EXPECT_EQ(entry.Genre, "Folk");
    EXPECT_EQ(entry.Playlist, "Mine.pla");
    EXPECT_EQ(entry.Random, 5);
    entries.SetProcessed(0);
    EXPECT_EQ(entries.At(0).Processed, 1);
}

TEST(PlaylistEntries, AreFoundBySongAndByPlaceWithoutLetterCase) {
    PlaylistEntries entries;
    entries.Add({.ID = 1, .Track = 4, .CDJID = "A0", .Playlist = "Mine.pla"});
    entries.Add({.ID = 1, .Track = 4, .CDJID = "A0", .Playlist = "Other.pla"});
    entries.Add({.ID = 2, .Track = 4, .CDJID = "B0", .Playlist = "Mine.pla"});
    EXPECT_EQ(entries.FindSong(1, "mine.PLA"), 0U);
    EXPECT_EQ(entries.FindSong(1, "Other.pla"), 1U);
    EXPECT_FALSE(entries.FindSong(2, "Other.pla"));
    EXPECT_FALSE(entries.FindSong(1, "Third.pla"));
    EXPECT_EQ(entries.FindPlace("b0", 4, "MINE.pla"), 2U);
    EXPECT_FALSE(entries.FindPlace("B0", 5, "Mine.pla"));
    EXPECT_FALSE(entries.FindPlace("B0", 4, "Other.pla"));
    EXPECT_FALSE(entries.FindPlace("C0", 4, "Mine.pla"));
}

TEST(PlaylistEntries, AreFoundByTheFirstOfSeveralOfAKey) {
    PlaylistEntries entries;
    entries.Add({.ID = 1, .Track = 4, .CDJID = "A0", .Playlist = "Mine.pla"});
    entries.Add({.ID = 1, .Track = 5, .CDJID = "A0", .Playlist = "Mine.pla"});
    EXPECT_EQ(entries.FindSong(1, "Mine.pla"), 0U);
    EXPECT_EQ(entries.FindPlace("A0", 5, "Mine.pla"), 1U);
}

std::vector<int> Ids(const PlaylistEntries& entries,
                     const std::vector<PlaylistEntries::Position>& order) {
    std::vector<int> ids;
    for (const PlaylistEntries::Position at : order)
        ids.push_back(entries.At(at).ID);
    return ids;
}

TEST(PlaylistEntries, AreSortedByNameThenKeyThenArrival) {
    PlaylistEntries entries;
    entries.Add({.ID = 1, .Artist = "ann", .Genre = "Rock", .Random = 2});
    entries.Add({.ID = 2, .Artist = "Bob", .Genre = "Folk", .Random = 7});
    entries.Add({.ID = 3, .Artist = "Ann", .Genre = "rock", .Random = 1});
    entries.Add({.ID = 4, .Artist = "", .Genre = "Folk", .Random = 7});
    entries.Add({.ID = 5, .Artist = "Bob", .Genre = "", .Random = 0});
    EXPECT_EQ(Ids(entries, entries.ByGenre()), (std::vector{2, 4, 3, 1}));
    EXPECT_EQ(Ids(entries, entries.ByArtist()), (std::vector{3, 1, 5, 2}));
}

TEST(PlaylistEntries, TakeNoSpellingFromAnotherField) {
    PlaylistEntries entries;
    entries.Add({.Artist = "FOLK", .Genre = "Folk"});
    EXPECT_EQ(entries.At(0).Artist, "FOLK");
    EXPECT_EQ(entries.At(0).Genre, "Folk");
}

TEST(PlaylistEntries, KnowWhichPlaylistsWereRead) {
    PlaylistEntries entries;
    entries.NoteRead("Mine.pla", {.size = 7, .fingerprint = 9});
    entries.NoteUnread("Other.pla");
    entries.NoteMadeAnew("Rock.pla");
    EXPECT_EQ(entries.ContentOf("mine.PLA"), (PlaylistContent{.size = 7, .fingerprint = 9}));
    EXPECT_EQ(entries.ContentOf("Other.pla"), std::nullopt);
    EXPECT_EQ(entries.ContentOf("Third.pla"), std::nullopt);
    EXPECT_EQ(entries.ReadCount(), 1U);
    EXPECT_TRUE(entries.IsUnread("other.pla"));
    EXPECT_FALSE(entries.IsUnread("Mine.pla"));
    EXPECT_TRUE(entries.IsMadeAnew("ROCK.pla"));
    EXPECT_FALSE(entries.IsMadeAnew("Mine.pla"));
}

TEST(PlaylistEntries, FollowSongsThatBecameOthers) {
    PlaylistEntries entries;
    entries.Add({.ID = 1, .Track = 0, .CDJID = "A0", .Playlist = "Mine.pla"});
    entries.Add({.ID = 4, .Track = 3, .CDJID = "A0", .Playlist = "Mine.pla"});
    entries.SongBecame(1, 2);
    entries.SongBecame(2, 3);
    EXPECT_EQ(entries.At(0).ID, 3);
    EXPECT_TRUE(entries.HasBecomeAnother(0));
    EXPECT_EQ(entries.At(1).ID, 4);
    EXPECT_FALSE(entries.HasBecomeAnother(1));
}

TEST(PlaylistEntries, DoNotGoRoundInCircles) {
    PlaylistEntries entries;
    entries.Add({.ID = 1, .Track = 0, .CDJID = "A0", .Playlist = "Mine.pla"});
    entries.SongBecame(1, 2);
    entries.SongBecame(2, 1);
    entries.SongBecame(1, 1);
    EXPECT_EQ(entries.At(0).ID, 2);
}

/// As when an artist's tracks are gathered: none has a key or a playlist.
TEST(PlaylistEntries, MayShareTheirKeyInAnyNumber) {
    PlaylistEntries entries;
    for (int i = 0; i < 200'000; ++i)
        entries.Add({.Track = 1, .CDJID = "A0"});
    EXPECT_EQ(entries.Count(), 200'000U);
    EXPECT_EQ(entries.FindSong(0, ""), 0U);
}

}  // namespace
}  // namespace quillon
