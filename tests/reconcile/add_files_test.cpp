#include <gmock/gmock.h>

#include "tests/reconcile/adding_fixture.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST_F(AddingTest, FilesAnUntaggedFileOfTheSourceFolderUnderUnknown) {
    AddNew("Artist - Song.mp3");
    Add();
    EXPECT_THAT(library.Albums(), ElementsAre("Unknown|Unknown|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Unknown\Unknown\Song.mp3|Song|1)"));
    EXPECT_THAT(library.Rows("SELECT Artist, Album, Song, Genre FROM Spinner"),
                ElementsAre("Unknown|Unknown|Song|other"));
    EXPECT_EQ(library.files.Content(R"(D:\Music\Unknown\Unknown\Song.mp3)"),
              support::UntaggedSoundFile());
    EXPECT_TRUE(library.files.FileExists(R"(D:\New\Artist - Song.mp3)"));
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(AddingTest, GivesAllRowsTheValuesOfNewOnes) {
    library.host.Set("Host", "music.example");
    AddNew("x.mp3", TagOf("Song", "Artist", "Album", 7, 17));
    Add();
    EXPECT_THAT(
        library.Rows("SELECT CDJID, Title, Artist, Player, LocationValid, [Position], FrameOffset, "
                     "Frames, [Group], DateAdded, DateReleased, DateLastPlayed, Tracks, Minutes, "
                     "Seconds, Rating1, Rating2, Rating3, Rating4, TimesPlayed, TimePlayed, "
                     "NeverPlay, ImageFile FROM Albums"),
        ElementsAre("252E671073EC0001|Album|Artist|1001|True|0|-1|0|-1|11/15/2026 5:38:55 AM|0|0|"
                    "1|-1|-1|0|0|0|0|0|0|False|Null"));
    EXPECT_THAT(
        library.Rows("SELECT CDJID, Track, Title, Artist, Minutes, Seconds, SoundFile, Notes, "
                     "DateAdded, DateReleased, DateLastPlayed, Frames, Rating1, Rating2, Rating3, "
                     "Rating4, TimesPlayed, TimePlayed, [Group], NeverPlay FROM Tracks"),
        ElementsAre(R"(252E671073EC0001|7|Song|Null|-1|-1|D:\Music\Artist\Album\Song.mp3|)"
                    "Album: Album|11/15/2026 5:38:55 AM|0|0|0|0|0|0|0|0|0|0|False"));
    EXPECT_THAT(
        library.Rows("SELECT DownLoadTime, FileName, Artist, Album, Song, Length, Playcount, "
                     "Playlist, Genre, Exclude, Include FROM Spinner"),
        ElementsAre("11/15/2026 5:38:55 AM|rtsp://music.example/spinlinks/000-Rock-000.rm|"
                    "Artist|Album|Song|0|0||Rock|0|0"));
    EXPECT_THAT(library.Rows("SELECT Artist, ArtistID, ShortBio, LongBio FROM SpinnerArtist"),
                ElementsAre("Artist|0||"));
    EXPECT_EQ(library.run.counts.albumsAdded, 1U);
    EXPECT_EQ(library.run.counts.tracksAdded, 1U);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(AddingTest, TakesTheNameOfAnUntaggedFileWithoutADash) {
    AddNew("Song.MP3");
    AddNew(R"(A-B\Other.mp3)");
    Add();
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(A-B\Unknown\Other.mp3|Other|1)", R"(Unknown\A-B\Other.mp3|Other|1)",
                            R"(Unknown\Unknown\Song.mp3|Song|1)"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(AddingTest, TakesNoCompanionThatAMacintoshPutBesideAFile) {
    AddNew("._Artist - Song.mp3");
    AddNew("Artist - Song.mp3");
    Add();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Unknown\Unknown\Song.mp3|Song|1)"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(AddingTest, CountsTheFilesThatItHasCopied) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album"));
    AddNew("2.mp3", TagOf("Two", "Artist", "Album"));
    AddImage("front.jpg");
    library.files.AddFile(R"(D:\Music\Artist\Album\Two.mp3)", "was here before");
    Add();
    EXPECT_EQ(library.run.counts.filesCopied, 1U);
    library.run.counts = {};
    Add();
    EXPECT_EQ(library.run.counts.filesCopied, 0U);
}

TEST_F(AddingTest, BuildsTheLinkWithOtherForAGenreWithoutARow) {
    AddNew("x.mp3", TagOf("Song", "Artist", "Album", 1, 255));
    Add();
    EXPECT_THAT(library.Rows("SELECT FileName, Genre FROM Spinner"),
                ElementsAre("rtsp://localhost/spinlinks/000-other-000.rm|other"));
}

TEST_F(AddingTest, MakesOneAlbumOfTwoFilesInARow) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album", 1));
    AddNew("2.mp3", TagOf("Two", "Artist", "Album", 2));
    Add();
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Album|2"));
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(Artist\Album\One.mp3|One|1)", R"(Artist\Album\Two.mp3|Two|2)"));
    EXPECT_EQ(library.Database().Count("SELECT CDJID, Tracks FROM Albums"), 1U);
    EXPECT_EQ(library.run.counts.albumsAdded, 1U);
    EXPECT_EQ(library.run.counts.tracksAdded, 2U);
}

TEST_F(AddingTest, LooksAnAlbumUpAgainAfterAnotherOne) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album", 1));
    AddNew("2.mp3", TagOf("Two", "Artist", "Other", 1));
    AddNew("3.mp3", TagOf("Three", "Artist", "Album", 2));
    Add();
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Album|2", "Artist|Other|1"));
    EXPECT_THAT(library.Rows("SELECT DISTINCT CDJID FROM Tracks ORDER BY CDJID"),
                ElementsAre("252E671073EC0001", "252E671073EC0002"));
    EXPECT_THAT(library.Rows("SELECT Artist FROM SpinnerArtist"), ElementsAre("Artist"));
}

TEST_F(AddingTest, VisitsEverySubfolderTwice) {
    AddNew(R"(A\B\x - f.mp3)");
    Add();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\f.mp3|f|1)", R"(Unknown\B\f.mp3|f|1)"));
    EXPECT_THAT(library.Albums(), ElementsAre("A|B|1", "Unknown|B|1"));
    EXPECT_THAT(library.calls.Of({"CopyFile"}),
                ElementsAre(R"(CopyFile D:\New\A\B\x - f.mp3 -> D:\Music\Unknown\B\f.mp3)",
                            R"(CopyFile D:\New\A\B\x - f.mp3 -> D:\Music\A\B\f.mp3)"));
}

TEST_F(AddingTest, NamesTheAlbumOfAFileByItsNearestFolder) {
    AddNew(R"(A\x - top.mp3)");
    AddNew(R"(A\B\C\x - deep.mp3)");
    Add();
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(A\C\deep.mp3|deep|1)", R"(A\Unknown\top.mp3|top|1)",
                            R"(Unknown\A\top.mp3|top|1)", R"(Unknown\C\deep.mp3|deep|1)"));
}

TEST_F(AddingTest, WritesATaggedFileOnceThoughItIsVisitedTwice) {
    AddNew(R"(A\B\f.mp3)", TagOf("Song", "Artist", "Album", 1));
    Add();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Artist\Album\Song.mp3|Song|1)"));
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Album|1"));
    EXPECT_THAT(library.Rows("SELECT Song FROM Spinner"), SizeIs(1));
    EXPECT_THAT(library.calls.Of({"CopyFile"}), SizeIs(1));
}

TEST_F(AddingTest, ReadsAFolderOfTaggedFilesOnce) {
    AddNew(R"(A\B\f.mp3)", TagOf("Song", "Artist", "Album", 1));
    AddNew(R"(A\B\g.mp3)", TagOf("Other", "Artist", "Album", 2));
    Add();
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), SizeIs(2));
    EXPECT_THAT(library.calls.Of({"FilesIn"}), SizeIs(3));
}

/// A name that the tag lacks is another one at the second visit.
TEST_F(AddingTest, ReadsAFolderTwiceWhereATagLacksAName) {
    AddNew(R"(A\B\f.mp3)", TagOf("Song", "Artist", "Album", 1));
    AddNew(R"(A\B\g.mp3)", TagOf("Other", "", "Album", 2));
    Add();
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), SizeIs(4));
    EXPECT_THAT(library.Albums(), ElementsAre("A|Album|1", "Artist|Album|1", "Unknown|Album|1"));
}

TEST_F(AddingTest, TriesAFileAgainThatCouldNotBeAdded) {
    AddNew(R"(A\B\f.mp3)", TagOf("Song", "Artist", "Album", 1));
    library.calls.Refuse(R"(CopyFile D:\New\A\B\f.mp3 -> D:\Music\Artist\Album\Song.mp3)",
                         FailureNumber::DiskFull, "D:");
    Add();
    EXPECT_THAT(library.calls.Of({"CopyFile"}), SizeIs(2));
    EXPECT_THAT(Log(), SizeIs(2));
}

TEST_F(AddingTest, AddsNothingTheSecondTime) {
    AddNew(R"(A\B\x - f.mp3)");
    AddNew(R"(A\B\g.mp3)", TagOf("Song", "Artist", "Album", 1));
    AddImage(R"(A\B\front.jpg)");
    Add();
    const auto rows = AllRows();
    const auto everything = library.files.Everything();
    library.calls.Forget();
    library.ReopenDatabase();
    library.run.counts = {};
    Add();
    EXPECT_EQ(AllRows(), rows);
    EXPECT_EQ(library.files.Everything(), everything);
    EXPECT_THAT(library.calls.Of({"CopyFile", "CreateFolder"}), IsEmpty());
    EXPECT_EQ(library.run.counts.tracksAdded, 0U);
    EXPECT_EQ(library.run.counts.albumsAdded, 0U);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(AddingTest, TakesFilesOfAnyLetterCaseInTheirEndingAndNoOthers) {
    AddNew("a - one.MP3");
    AddNew("a - two.mp4");
    AddNew("a - three.mp3.txt");
    Add();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Unknown\Unknown\one.mp3|one|1)"));
}

TEST_F(AddingTest, GivesTwoUntaggedFilesOfOneTitleOneRow) {
    AddNew(R"(1 - Song.mp3)");
    library.files.AddFile(R"(D:\New\2 - song.mp3)", "other bytes");
    Add();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Unknown\Unknown\Song.mp3|Song|1)"));
    EXPECT_EQ(library.files.Content(R"(D:\Music\Unknown\Unknown\Song.mp3)"),
              support::UntaggedSoundFile());
}

TEST_F(AddingTest, TakesNamesThatDifferInLetterCaseForOne) {
    AddNew("1.mp3", TagOf("One", "ABBA", "Arrival", 1));
    AddNew("2.mp3", TagOf("Two", "Abba", "ARRIVAL", 2));
    AddNew("3.mp3", TagOf("ONE", "abba", "arrival", 3));
    Add();
    EXPECT_THAT(library.Albums(), ElementsAre("ABBA|Arrival|2"));
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(ABBA\Arrival\One.mp3|One|1)", R"(Abba\ARRIVAL\Two.mp3|Two|2)"));
    EXPECT_THAT(library.Rows("SELECT Artist FROM SpinnerArtist"), ElementsAre("ABBA"));
    EXPECT_THAT(library.calls.Of({"CreateFolder"}), SizeIs(2));
}

TEST_F(AddingTest, KeepsNamesBeyondTheCodePage) {
    AddNew("Žofie Dvořiště\\Řeka\\1 - Přeháňka.mp3");
    AddNew("日本\\音楽\\1 - 曲.mp3");
    Add();
    EXPECT_THAT(library.Tracks(), Contains("Žofie Dvořiště\\Řeka\\Přeháňka.mp3|Přeháňka|1"));
    EXPECT_THAT(library.Tracks(), Contains("日本\\音楽\\曲.mp3|曲|1"));
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(AddingTest, JoinsAnAlbumThatExistsWhateverItsPlayer) {
    library.AddAlbumRow("C70A5B0F", "Artist", "Album", 5, 1);
    AddNew("x.mp3", TagOf("Song", "Artist", "Album", 6));
    Add();
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Album|6"));
    EXPECT_THAT(library.Rows("SELECT CDJID FROM Tracks"), ElementsAre("C70A5B0F"));
    EXPECT_THAT(library.Rows("SELECT Artist FROM SpinnerArtist"), IsEmpty());
    EXPECT_EQ(library.run.counts.albumsAdded, 0U);
}

TEST_F(AddingTest, PrefersTheLibrarysAlbumToADiscOfThatName) {
    library.AddAlbumRow("C70A5B0F", "Artist", "Album", 5, 1);
    library.AddAlbumRow("252E671073EC0004", "Artist", "Album", 2);
    library.AddAlbumRow("C70A5B10", "Artist", "Album", 5, 2);
    AddNew("x.mp3", TagOf("Song", "Artist", "Album", 6));
    Add();
    EXPECT_THAT(library.Rows("SELECT CDJID, Tracks FROM Albums ORDER BY ID"),
                ElementsAre("C70A5B0F|5", "252E671073EC0004|3", "C70A5B10|5"));
    EXPECT_THAT(library.Rows("SELECT CDJID FROM Tracks"), ElementsAre("252E671073EC0004"));
}

TEST_F(AddingTest, TakesTheFirstOfSeveralDiscs) {
    library.AddAlbumRow("C70A5B0F", "Artist", "Album", 5, 1);
    library.AddAlbumRow("C70A5B10", "Artist", "Album", 5, 2);
    AddNew("x.mp3", TagOf("Song", "Artist", "Album", 6));
    Add();
    EXPECT_THAT(library.Rows("SELECT CDJID FROM Tracks"), ElementsAre("C70A5B0F"));
}

TEST_F(AddingTest, KnowsAnArtistOfTheDownloadTable) {
    library.Execute("INSERT INTO SpinnerArtist (Artist, ArtistID) VALUES ('ARTIST', 5)");
    AddNew("x.mp3", TagOf("Song", "Artist", "Album"));
    Add();
    EXPECT_THAT(library.Rows("SELECT Artist, ArtistID FROM SpinnerArtist"),
                ElementsAre("ARTIST|5"));
}

TEST_F(AddingTest, CountsAnAlbumWithoutACountFromNothing) {
    library.Execute("INSERT INTO Albums (CDJID, Artist, Title) VALUES ('x', 'Artist', 'Album')");
    AddNew("x.mp3", TagOf("Song", "Artist", "Album"));
    Add();
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Album|1"));
}

TEST_F(AddingTest, NeverOverwritesAFileOfTheLibrary) {
    library.files.AddFile(R"(D:\Music\Artist\Album\Song.mp3)", "was here before");
    AddNew("x.mp3", TagOf("Song", "Artist", "Album"));
    Add();
    EXPECT_EQ(library.files.Content(R"(D:\Music\Artist\Album\Song.mp3)"), "was here before");
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Artist\Album\Song.mp3|Song|1)"));
    EXPECT_THAT(Log(), IsEmpty());
}

/// Whose file is gone is found out by a reconciliation, which has looked at the whole library.
TEST_F(AddingTest, WritesNoMoreWhenATrackHasTheTarget) {
    library.AddAlbumRow("252E671073EC0003", "Artist", "Album", 1);
    library.AddTrackRow("252E671073EC0003", 4, R"(D:\MUSIC\artist\album\song.mp3)", "Old");
    AddNew("x.mp3", TagOf("Song", "Artist", "Album"));
    const auto rows = AllRows();
    Add();
    EXPECT_EQ(AllRows(), rows);
    EXPECT_FALSE(library.files.FolderExists(R"(D:\Music\Artist)"));
}

TEST_F(AddingTest, WritesTheLibraryRootWithOneBackslash) {
    library.run.settings.LibraryRoot = R"(D:\Music\)";
    AddNew("x.mp3", TagOf("Song", "Artist", "Album"));
    Add();
    EXPECT_THAT(library.Rows("SELECT SoundFile FROM Tracks"),
                ElementsAre(R"(D:\Music\Artist\Album\Song.mp3)"));
}

TEST_F(AddingTest, ShowsEveryFileAsItsTurnComes) {
    AddNew("x.mp3", TagOf("Song", "Artist", "Album"));
    AddNew(R"(A\y.mp3)", TagOf("Song", "Artist", "Album"));
    Add();
    EXPECT_THAT(library.calls.Of({"Item"}), ElementsAre(R"(Item 1. Add File D:\New\x.mp3)",
                                                        R"(Item 1. Add File D:\New\A\y.mp3)"));
}

TEST_F(AddingTest, StopsBetweenTwoFilesAfterAbort) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album"));
    AddNew("2.mp3", TagOf("Two", "Artist", "Album"));
    AddNew(R"(A\3.mp3)", TagOf("Three", "Artist", "Album"));
    library.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem == R"(1. Add File D:\New\2.mp3)"; });
    Add();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Artist\Album\One.mp3|One|1)"));
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Album|1"));
    EXPECT_THAT(Log(), IsEmpty());
}

}  // namespace
}  // namespace quillon
