#include "download/populate_spinner_tracks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/sql.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class PopulateSpinnerTracksTest : public ::testing::Test {
  protected:
    void AddAlbum(const std::string& cdjid, const std::string& artist, const std::string& title) {
        library.AddAlbumRow(cdjid, artist, title, 1);
    }
    void AddTrack(const std::string& cdjid, const std::string& title,
                  const std::string& minutes = "3", const std::string& seconds = "5") {
        library.Execute("INSERT INTO Tracks (CDJID, Title, Minutes, Seconds) VALUES ('" + cdjid +
                        "', " + FilterQuoted(title) + ", " + minutes + ", " + seconds + ")");
    }
    void AddDownload(const std::string& artist, const std::string& link) {
        library.Execute("INSERT INTO Spinner (Artist, Album, Song, FileName) VALUES (" +
                        FilterQuoted(artist) + ", 'Old', 'Old', " + FilterQuoted(link) + ")");
    }
    void Populate() { PopulateSpinnerTracks(library.run); }

    /// The fields of the newest row.
    std::string Newest(const std::string& fields) {
        const auto rows = library.Rows("SELECT " + fields + " FROM Spinner ORDER BY ID");
        return rows.empty() ? "" : rows.back();
    }
    std::vector<std::string> Songs() {
        return library.Rows("SELECT Artist, Album, Song FROM Spinner ORDER BY ID");
    }

    support::TestLibrary library;
};

TEST_F(PopulateSpinnerTracksTest, AddsARowWithAllTheValuesOfANewSong) {
    library.host.Set("Host", "radio.example");
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    Populate();
    EXPECT_THAT(
        library.Rows("SELECT ID, DownLoadTime, FileName, Artist, Album, Song, Length, Playcount, "
                     "Playlist, Genre, Exclude, Include FROM Spinner"),
        ElementsAre("1|11/15/2026 5:38:55 AM|rtsp://radio.example/spinlinks/000-1-000.rm|Ann|First|"
                    "One|185|0||other|0|0"));
    EXPECT_THAT(library.Rows("SELECT Count(*) FROM Spinner WHERE Playlist=''"), ElementsAre("1"));
    EXPECT_EQ(library.run.counts.songsAdded, 1U);
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(PopulateSpinnerTracksTest, ReadsTheDownloadHostFromTheHostsOwnSettings) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    Populate();
    EXPECT_THAT(library.calls.Made(), Contains("GetINISetting Download Host host.ini"));
    EXPECT_EQ(Newest("FileName"), "rtsp://localhost/spinlinks/000-1-000.rm");
}

TEST_F(PopulateSpinnerTracksTest, ShowsItsStep) {
    Populate();
    EXPECT_EQ(library.window.last.aItem, "1. Add Album info to Download Table");
}

TEST_F(PopulateSpinnerTracksTest, DoesNothingFurtherOnceAbortIsPressed) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    library.window.abortPressed = true;
    Populate();
    EXPECT_EQ(library.window.last.aItem, "1. Add Album info to Download Table");
    EXPECT_THAT(Songs(), IsEmpty());
}

TEST_F(PopulateSpinnerTracksTest, FinishesWhenAbortIsPressedAmongTheSongs) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    AddTrack("A1", "Two");
    library.window.onEvents = [this](const FormState&) {
        library.window.abortPressed = library.window.events > 1;
    };
    Populate();
    EXPECT_TRUE(library.run.AbortRequested);
    EXPECT_EQ(Songs().size(), 2U);
}

TEST_F(PopulateSpinnerTracksTest, AddsNothingTheSecondTimeAndLeavesTheFileAsItIs) {
    AddAlbum("A1", "Ann's & Bob", "100% [live]");
    AddTrack("A1", "Søng #1");
    AddTrack("A1", "it's");
    AddTrack("A1", "");
    Populate();
    EXPECT_EQ(Songs().size(), 3U);
    const std::string before = library.DatabaseBytes();
    Populate();
    EXPECT_EQ(Songs().size(), 3U);
    EXPECT_TRUE(library.DatabaseBytes() == before);
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(PopulateSpinnerTracksTest, FindsASongWhateverItsLetterCaseAndLeavesItsRow) {
    library.Execute(
        "INSERT INTO Spinner (Artist, Album, Song, Length, Genre) VALUES ('ANN', 'first', 'oNe', "
        "7, 'Folk')");
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    Populate();
    EXPECT_THAT(library.Rows("SELECT Artist, Length, Genre FROM Spinner"),
                ElementsAre("ANN|7|Folk"));
}

TEST_F(PopulateSpinnerTracksTest, AddsASongOnceThatIsOnItsAlbumTwice) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    AddTrack("A1", "ONE");
    Populate();
    EXPECT_THAT(Songs(), ElementsAre("Ann|First|One"));
}

TEST_F(PopulateSpinnerTracksTest, TakesSongsOfOtherPlayersButNoTracksWithoutAlbum) {
    library.AddAlbumRow("C70A5B0F", "Bob", "Disc", 1, 2);
    AddTrack("C70A5B0F", "Two");
    AddTrack("nowhere", "Lost");
    Populate();
    EXPECT_THAT(Songs(), ElementsAre("Bob|Disc|Two"));
}

TEST_F(PopulateSpinnerTracksTest, HasNoLengthWhileTheMinutesAreUnknown) {
    AddAlbum("A1", "Ann", "First");
    for (const char* minutes : {"-1", "Null"}) {
        AddTrack("A1", std::string("Song ") + minutes, minutes, "40");
        Populate();
        EXPECT_EQ(Newest("Song, Length"), std::string("Song ") + minutes + "|0");
    }
}

TEST_F(PopulateSpinnerTracksTest, TakesMinutesAloneWhereSecondsAreMissing) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One", "2", "Null");
    Populate();
    EXPECT_EQ(Newest("Length"), "120");
}

TEST_F(PopulateSpinnerTracksTest, TakesTheGenreFromTheSecondPieceOfAnExistingLink) {
    AddDownload("Ann", "rtsp://host/spinlinks/000-Hip-Hop-000.rm");
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    Populate();
    EXPECT_EQ(Newest("Song, Genre"), "One|Hip");
}

TEST_F(PopulateSpinnerTracksTest, TakesARowsNumberForTheGenreWhereTheLinkIsItsOwn) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    AddTrack("A1", "Two");
    AddTrack("A1", "Three");
    Populate();
    EXPECT_THAT(library.Rows("SELECT Song, Genre FROM Spinner ORDER BY ID"),
                ElementsAre("One|other", "Two|1", "Three|1"));
}

TEST_F(PopulateSpinnerTracksTest, HasGenreOtherWhereTheLinkHasFewerThanThreePieces) {
    AddDownload("Ann", "rtsp://host/link.rm");
    AddDownload("Bob", "one-two");
    library.Execute("INSERT INTO Spinner (Artist) VALUES ('Cay')");
    for (const char* artist : {"Ann", "Bob", "Cay"}) {
        AddAlbum(artist, artist, "First");
        AddTrack(artist, "One");
    }
    Populate();
    EXPECT_THAT(library.Rows("SELECT Artist, Genre FROM Spinner WHERE Song='One' ORDER BY ID"),
                ElementsAre("Ann|other", "Bob|other", "Cay|other"));
}

TEST_F(PopulateSpinnerTracksTest, TakesAnEmptyPieceForAGenreAndAHyphenInTheHostForASeparator) {
    AddDownload("Ann", "000--000");
    AddDownload("Bob", "rtsp://my-host/000-Folk-000.rm");
    for (const char* artist : {"Ann", "Bob"}) {
        AddAlbum(artist, artist, "First");
        AddTrack(artist, "One");
    }
    Populate();
    EXPECT_THAT(library.Rows("SELECT Artist, Genre FROM Spinner WHERE Song='One' ORDER BY ID"),
                ElementsAre("Ann|", "Bob|host/000"));
}

TEST_F(PopulateSpinnerTracksTest, LogsASongThatLacksANameOnceAndAddsTheOthers) {
    AddAlbum("A1", "Ann", "First");
    library.Execute("INSERT INTO Tracks (CDJID) VALUES ('A1')");
    AddTrack("A1", "One");
    library.Execute("INSERT INTO Albums (CDJID, Title) VALUES ('A2', 'Nameless')");
    AddTrack("A2", "Two");
    library.Execute("INSERT INTO Albums (CDJID, Artist) VALUES ('A3', 'Untitled')");
    AddTrack("A3", "Three");
    Populate();
    EXPECT_THAT(Songs(), ElementsAre("Ann|First|One"));
    const std::string location =
        "Quillon: Populate Spininer Tracks Error: Line 2 Syntax error (missing operator) in query "
        "expression: ";
    EXPECT_THAT(library.host.log,
                ElementsAre(location + "Artist=\"Ann\" AND Album=\"First\" AND Song=",
                            location + "Artist= AND Album=\"Nameless\" AND Song=\"Two\"",
                            location + "Artist=\"Untitled\" AND Album= AND Song=\"Three\""));
}

TEST_F(PopulateSpinnerTracksTest, LogsANameWithADoubleQuoteAndAddsTheOthers) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "12\" Mix");
    AddTrack("A1", "One");
    Populate();
    EXPECT_THAT(Songs(), ElementsAre("Ann|First|One"));
    EXPECT_THAT(library.host.log,
                ElementsAre(AllOf(StartsWith("Quillon: Populate Spininer Tracks Error: Line 2 "),
                                  HasSubstr("12\" Mix"))));
    EXPECT_EQ(library.window.last.aError, "Populate Spininer Tracks Error:");
}

TEST_F(PopulateSpinnerTracksTest, LogsALengthThatDoesNotFitAndGoesOnWithTheNextSong) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "Endless", "600", "0");
    AddTrack("A1", "One");
    Populate();
    EXPECT_THAT(library.Rows("SELECT Song, Length, Genre FROM Spinner"),
                ElementsAre("One|185|other"));
    EXPECT_THAT(library.host.log,
                ElementsAre(StartsWith("Quillon: Populate Spininer Tracks Error: Line 4 ")));
}

TEST_F(PopulateSpinnerTracksTest, LeavesNothingOfASongThatIsRefused) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    AddTrack("A1", "Two");
    library.Database().RefuseValue("Song", "One");
    Populate();
    EXPECT_THAT(library.Rows("SELECT Song, FileName FROM Spinner"),
                ElementsAre("Two|rtsp://localhost/spinlinks/000-1-000.rm"));
    EXPECT_EQ(library.host.log.size(), 1U);
}

TEST_F(PopulateSpinnerTracksTest, LogsATableThatCannotBeOpenedAndEnds) {
    library.Database().Refuse("Scan Spinner");
    Populate();
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Populate Spininer Tracks Error: Line 1 refused"));
}

TEST_F(PopulateSpinnerTracksTest, NamesTheNumberThatTheRowReallyGot) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    // Somebody else's row takes the number that the new one had been shown.
    library.Database().BeforeStatement("Insert Spinner", [this] {
        library.Database().Execute("INSERT INTO Spinner (Artist) VALUES ('Quicker')");
    });
    Populate();
    EXPECT_THAT(library.Rows("SELECT ID, FileName FROM Spinner WHERE Song='One'"),
                ElementsAre("2|rtsp://localhost/spinlinks/000-2-000.rm"));
}

TEST_F(PopulateSpinnerTracksTest, StoresARowTogetherWithItsLink) {
    AddAlbum("A1", "Ann", "First");
    AddTrack("A1", "One");
    AddTrack("A1", "Two");
    Populate();
    EXPECT_EQ(library.Database().Count("Insert Spinner"), 2U);
    EXPECT_EQ(library.Database().Count("Update Spinner"), 0U);
    EXPECT_THAT(library.Rows("SELECT FileName FROM Spinner ORDER BY ID"),
                ElementsAre("rtsp://localhost/spinlinks/000-1-000.rm",
                            "rtsp://localhost/spinlinks/000-2-000.rm"));
}

}  // namespace
}  // namespace quillon
