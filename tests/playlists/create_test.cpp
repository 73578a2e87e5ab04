#include "playlists/create.h"

#include <gmock/gmock.h>

#include "playlists/artist_entries.h"
#include "run/steps.h"
#include "tests/playlists/create_fixture.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAreArray;

TEST_F(CreateTest, WritesAListForEachGenreAndArtist) {
    AddSpinner("Ann", "One", "Folk");
    AddSpinner("Bob", "Four", "Folk");
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Folk.pla"));
    EXPECT_EQ(List("Folk.pla"),
              "CDJ Playlist V1.1\r\nA0 0\r\nA0 1\r\nA0 2\r\nB0 0\r\nB0 1\r\nB0 2\r\n");
    EXPECT_THAT(Lines("Bob.pla"), ElementsAre("B0 0", "B0 1", "B0 2"));
    EXPECT_EQ(run().counts.playlistsWritten, 3U);
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(CreateTest, RecordsEachListWithItsFamily) {
    AddSpinner("Ann", "One", "Folk");
    Create();
    EXPECT_THAT(library.Rows("SELECT FilePath, Filename, Type, AutoGenre, AutoArtist, DeviceCode, "
                             "Browser, Device FROM Playlists ORDER BY ID"),
                ElementsAre(R"(D:\Lists\|Folk|.pla|True|False||False|False)",
                            R"(D:\Lists\|Ann|.pla|False|True||False|False)"));
}

TEST_F(CreateTest, SetsOnlyTheMarkOfARowThatIsThere) {
    AddSpinner("Ann", "One", "Folk");
    library.Execute(
        "INSERT INTO Playlists (FilePath, Filename, Type, AutoGenre, AutoArtist, DeviceCode, "
        "Browser) VALUES ('d:\\lists\\', 'FOLK', '.PLA', False, True, 'x', True)");
    Create();
    EXPECT_THAT(library.Rows("SELECT FilePath, Filename, Type, AutoGenre, AutoArtist, DeviceCode, "
                             "Browser FROM Playlists WHERE Filename='Folk'"),
                ElementsAre(R"(d:\lists\|FOLK|.PLA|True|True|x|True)"));
    Create();
    EXPECT_THAT(Playlists(), SizeIs(2)) << "a second run adds no rows";
}

TEST_F(CreateTest, MakesOnlyTheFamiliesThatAreWanted) {
    AddSpinner("Ann", "One", "Folk");
    run().settings.ArtistPlaylist = false;
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Folk.pla"));
    library.files.DeleteFile(R"(D:\Lists\Folk.pla)");
    run().settings.ArtistPlaylist = true;
    run().settings.GenrePlaylist = false;
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla"));
}

/// A part takes one entry more than the setting says.
TEST_F(CreateTest, SplitsALongListBehindOneEntryMoreThanTheLimit) {
    AddLongAlbum("Cee", "Genre", 250);
    run().settings.ArtistPlaylist = false;
    run().settings.MaxPlaylistLength = 100;
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Genre.pla", "Genre001.pla", "Genre002.pla"));
    EXPECT_THAT(Lines("Genre.pla"), SizeIs(101));
    EXPECT_THAT(Lines("Genre001.pla"), SizeIs(101));
    EXPECT_THAT(Lines("Genre002.pla"), SizeIs(48));
    EXPECT_THAT(Playlists(), ElementsAre(R"(D:\Lists\|Genre|.pla|True|False)",
                                         R"(D:\Lists\|Genre001|.pla|True|False)",
                                         R"(D:\Lists\|Genre002|.pla|True|False)"));
}

TEST_F(CreateTest, SplitsArtistsAlikeAndMakesNoEmptyPart) {
    AddLongAlbum("Cee", "Genre", 22);
    run().settings.GenrePlaylist = false;
    run().settings.MaxPlaylistLength = 10;
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Cee.pla", "Cee001.pla"));
    EXPECT_THAT(Lines("Cee001.pla"), SizeIs(11));
}

/// Part numbers have three digits, so that part 1001 has the name of part 1.
TEST_F(CreateTest, NumbersPartsWithThreeDigits) {
    AddLongAlbum("Cee", "Genre", 1002);
    run().settings.ArtistPlaylist = false;
    run().settings.MaxPlaylistLength = 0;
    Create();
    EXPECT_THAT(Lists(), SizeIs(1001)) << "Genre and Genre000 to Genre999";
    EXPECT_THAT(Lines("Genre001.pla"), ElementsAre("L0 1001"));
    EXPECT_THAT(Lines("Genre002.pla"), ElementsAre("L0 2"));
}

TEST_F(CreateTest, LeavesTheFirstPartEmptyWhenTheMostTracksAreLessThanNone) {
    AddLongAlbum("Cee", "Genre", 2);
    run().settings.ArtistPlaylist = false;
    run().settings.MaxPlaylistLength = -5;
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Genre.pla", "Genre001.pla", "Genre002.pla"));
    EXPECT_THAT(Lines("Genre.pla"), IsEmpty());
    EXPECT_THAT(Lines("Genre001.pla"), SizeIs(1));
    EXPECT_THAT(Lines("Genre002.pla"), SizeIs(1));
}

TEST_F(CreateTest, CleansNamesForFiles) {
    AddSpinner("Ann", "One", "Rock & Roll/Blues");
    library.Execute("UPDATE Tracks SET Artist='AC/DC' WHERE Artist='Bob'");
    AddSpinner("AC/DC", "Four", "Rock''n''Roll");
    Create();
    EXPECT_THAT(Lists(),
                ElementsAre("AC-DC.pla", "Ann.pla", "RockAndRoll-Blues.pla", "RocknRoll.pla"));
}

TEST_F(CreateTest, SkipsAListOfWhoseNameNothingIsLeft) {
    AddSpinner("Ann", "One", "?*");
    AddSpinner("Bob", "Four", "Folk");
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Folk.pla"));
    EXPECT_THAT(Lines("Folk.pla"), SizeIs(3));
    EXPECT_THAT(
        library.host.log,
        ElementsAre("Quillon: No playlist for ?*: a file's name can hold no character of it"));
}

TEST_F(CreateTest, SkipsAllPartsOfAListWithoutAName) {
    AddLongAlbum("Cee", "?*", 30);
    run().settings.ArtistPlaylist = false;
    run().settings.MaxPlaylistLength = 10;
    Create();
    EXPECT_THAT(Lists(), IsEmpty());
    EXPECT_THAT(Playlists(), IsEmpty());
}

/// The later of two genres replaces the file of the earlier, and they share a row.
TEST_F(CreateTest, LetsGenresOfTheSameCleanNameShareAFile) {
    AddSpinner("Ann", "One", "Rock & Roll");
    AddSpinner("Bob", "Four", "Rock&Roll");
    run().settings.ArtistPlaylist = false;
    Create();
    EXPECT_THAT(Lists(), ElementsAre("RockAndRoll.pla"));
    EXPECT_THAT(Lines("RockAndRoll.pla"), ElementsAre("B0 0", "B0 1", "B0 2"));
    EXPECT_THAT(Playlists(), SizeIs(1));
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: No playlist D:\Lists\RockAndRoll.pla for Rock & Roll: )"
                            "another list of this run has the same name"));
}

/// One genre in two spellings would lose half of its entries to the same file.
TEST_F(CreateTest, TakesSpellingsThatDifferInLetterCaseForOneGenre) {
    AddSpinner("Ann", "One", "Folk");
    AddSpinner("Bob", "Four", "FOLK");
    run().settings.ArtistPlaylist = false;
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Folk.pla"));
    EXPECT_THAT(Lines("Folk.pla"), SizeIs(6));
}

TEST_F(CreateTest, TakesTheFirstGenreMetForAnArtist) {
    AddSpinner("Ann", "One", "Folk");
    AddSpinner("Ann", "Two", "Jazz");
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Folk.pla"));
}

TEST_F(CreateTest, LeavesOutArtistsWithoutAGenreAndThoseWithoutTracks) {
    AddSpinner("Ann", "One", "Null");
    AddSpinner("Nobody", "Nothing", "Folk");
    Create();
    EXPECT_THAT(Lists(), IsEmpty());
}

/// The database's first track speaks for the whole artist.
TEST_F(CreateTest, LeavesAnArtistOutWhoseFirstTrackIsExcluded) {
    AddSpinner("Ann", "One", "Folk", -1);
    AddSpinner("Ann", "Two", "Folk", 0);
    AddSpinner("Bob", "Five", "Folk", -1);
    AddSpinner("Bob", "Four", "Folk", 0);
    Create();
    EXPECT_THAT(Lines("Folk.pla"), ElementsAre("B0 0", "B0 1", "B0 2"));
    EXPECT_THAT(Lists(), ElementsAre("Bob.pla", "Folk.pla"));
}

TEST_F(CreateTest, IncludesAnArtistWhoseFirstTrackTheDownloadTableLacks) {
    AddSpinner("Ann", "Two", "Folk", -1);
    Create();
    EXPECT_THAT(Lines("Folk.pla"), SizeIs(3));
}

TEST_F(CreateTest, LeavesOutTracksWithoutANumber) {
    AddSpinner("Ann", "One", "Folk");
    Renumber("Two", 0);
    library.Execute("UPDATE Tracks SET Track=Null WHERE Title='Three'");
    Create();
    EXPECT_THAT(Lines("Folk.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Tracks without a number, left out of the new playlists: 2 "
                            "(the first is Ann - Two)"));
}

TEST_F(CreateTest, MakesListsOfArtistsWithTracksEnough) {
    AddSpinner("Ann", "One", "Folk");
    AddSpinner("Bob", "Four", "Folk");
    library.Execute("DELETE * FROM Tracks WHERE Title='Six'");
    run().settings.ArtistThreshold = 3;
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Folk.pla"));
    EXPECT_THAT(Lines("Folk.pla"), SizeIs(5)) << "genres have no threshold";
    run().settings.ArtistThreshold = 2;
    Create();
    EXPECT_THAT(Lists(), Contains("Bob.pla"));
}

TEST_F(CreateTest, WritesALineForEachAlbumWhenAskedTo) {
    library.AddAlbumRow("A1", "ann", "Another", 1);
    library.AddAlbumRow("X0", "", "Nobody's", 1);
    run().settings.PlaylistByAlbumOption = true;
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla"));
    EXPECT_EQ(List("Ann.pla"), "CDJ Playlist V1.1\r\nA0 -1\r\nA1 -1\r\n");
    EXPECT_THAT(Playlists(), ElementsAre(R"(D:\Lists\|Ann|.pla|False|True)",
                                         R"(D:\Lists\|Bob|.pla|False|True)"));
}

TEST_F(CreateTest, AppliesTheThresholdToListsOfAlbumsAndNeverSplitsThem) {
    for (int i = 0; i < 9; ++i)
        library.AddAlbumRow("A" + std::to_string(i + 1), "Ann", "More", 1);
    library.Execute("DELETE * FROM Tracks WHERE Title='Six'");
    run().settings.PlaylistByAlbumOption = true;
    run().settings.ArtistThreshold = 3;
    run().settings.MaxPlaylistLength = 2;
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla"));
    EXPECT_THAT(Lines("Ann.pla"), SizeIs(10));
}

TEST_F(CreateTest, ShufflesByTheRunsOwnNumbers) {
    AddLongAlbum("Cee", "Genre", 90);
    run().settings.ArtistPlaylist = false;
    run().settings.RandomizePlaylist = true;
    run().random.Seed(MakeDateTime(2026, 1, 1));
    Create();
    const std::vector<std::string> first = Lines("Genre.pla");
    run().random.Seed(MakeDateTime(2026, 1, 1, 0, 0, 1));
    Create();
    const std::vector<std::string> second = Lines("Genre.pla");
    run().random.Seed(MakeDateTime(2026, 1, 1));
    Create();
    EXPECT_NE(first, second) << "a second later";
    EXPECT_THAT(second, UnorderedElementsAreArray(first));
    EXPECT_EQ(Lines("Genre.pla"), first) << "the same seed";
}

TEST_F(CreateTest, KeepsTheDatabasesOrderWhenNotShuffling) {
    AddLongAlbum("Cee", "Genre", 3);
    Create();
    EXPECT_THAT(Lines("Cee.pla"), ElementsAre("L0 0", "L0 1", "L0 2"));
}

TEST_F(CreateTest, ShowsWhatItDoes) {
    AddSpinner("Ann", "One", "Folk");
    Create();
    EXPECT_THAT(
        library.calls.Of({"Item"}),
        ElementsAre("Item 1. Read Playlist Track / Album Info",
                    "Item 1. Read Playlist Track / Album Info - Ann", "Item 2. New Genre Playlists",
                    "Item 3. New Artists Playlists", "Item 3. Create Artist Playlist - Ann"));
}

TEST_F(CreateTest, TakesArtistsAndTitlesWithQuotesOfBothKinds) {
    AddAlbum("C0", "Cee ''the'' \"Third\"", {"12\" Mix", "Other"});
    AddSpinner("Cee ''the'' \"Third\"", "12\" Mix", "Folk");
    AddSpinner("Bob", "Four", "Folk");
    AddAlbum("E0", "Eve", {"\"Heroes\""});
    AddSpinner("Eve", "\"Heroes\"", "Folk", -1);
    Create();
    EXPECT_THAT(Lines("Folk.pla"), ElementsAre("B0 0", "B0 1", "B0 2", "C0 0", "C0 1"))
        << "one of them is excluded by its title";
    EXPECT_THAT(Lists(), ElementsAre("Bob.pla", "Folk.pla"));
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: No playlist for Cee 'the' \"Third\": no "
                                              "file can have that name"));
}

TEST_F(CreateTest, LeavesOutTracksOfNoAlbum) {
    AddSpinner("Ann", "One", "Folk");
    library.Execute("UPDATE Tracks SET CDJID=Null WHERE Title='Two'");
    library.Execute("UPDATE Tracks SET CDJID='' WHERE Title='Three'");
    Create();
    EXPECT_THAT(Lines("Folk.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(Lines("Ann.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Tracks without an album's identifier (CDJID), left out of "
                            "the new playlists: 2 (the first is Ann - Two)"));
}

TEST_F(CreateTest, TakesSongsWithoutAnArtistForThoseOfAnEmptyName) {
    library.Execute("INSERT INTO Spinner (Song, Genre) VALUES ('x', 'Folk')");
    library.Execute("INSERT INTO Spinner (Song, Genre) VALUES ('y', 'Jazz')");
    library.Execute("UPDATE Tracks SET Artist='' WHERE Title='One'");
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Folk.pla"));
    EXPECT_THAT(Lines("Folk.pla"), ElementsAre("A0 0"));
}

TEST_F(CreateTest, ReadsEachTableOnceForAllArtists) {
    AddSpinner("Ann", "One", "Folk");
    AddSpinner("Bob", "Four", "Folk");
    library.Database().ForgetStatements();
    Create();
    for (const char* table : {"Scan Albums", "Scan Tracks", "Scan Spinner", "Scan Playlists"})
        EXPECT_EQ(library.Database().Count(table), 1U) << table;
    EXPECT_EQ(library.Database().Count("SELECT"), 0U);
}

/// Album entries are only made by a choice that no run makes; those of compilations never.
TEST_F(CreateTest, CouldTakeWholeAlbumsButForCompilations) {
    AddSpinner("Ann", "One", "Folk");
    AddSpinner("VARIOUS Artists", "Seven", "Folk");
    AddAlbum("V0", "various artists", {"Seven"});
    Steps steps(run(), "Test:");
    EXPECT_TRUE(ReadArtistEntries(run(), steps, ArtistEntries::Albums));
    ASSERT_EQ(Entries().Count(), 2U);
    EXPECT_EQ(Entries().At(0).CDJID, "A0");
    EXPECT_EQ(Entries().At(0).Track, -1);
    EXPECT_EQ(Entries().At(1).CDJID, "V0");
    EXPECT_EQ(Entries().At(1).Track, 1);
    EXPECT_EQ(Entries().At(1).Genre, "Folk");
}

}  // namespace
}  // namespace quillon
