#include "id3/id3_to_db.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Two albums with a song Dawn each, and its rows in the download table.
class ID3ToDBTest : public ::testing::Test {
  protected:
    ID3ToDBTest() {
        AddAlbum("252E671073EC0001", "First Light");
        AddAlbum("252E671073EC0002", "Second Light");
    }

    void AddAlbum(const std::string& cdjid, const std::string& title) {
        library.AddAlbumRow(cdjid, "Alder", title, 1);
        library.Execute("INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds) VALUES (\"" +
                        cdjid + "\", 4, \"Dawn\", 3, 0)");
        library.Execute("INSERT INTO Spinner (Artist, Album, Song, Genre) VALUES (\"Alder\", \"" +
                        title + "\", \"Dawn\", \"Rock\")");
    }

    void AddDifference(const std::string& field, const std::string& value,
                       const std::string& song = "Dawn", const std::string& artist = "Alder") {
        library.Execute(
            "INSERT INTO SpinnerID3Differences (Field, ID3Value, DBValue, Artist, "
            "Album, Track) VALUES ('" +
            field + "', '" + value + "', '', '" + artist + "', 'First Light', '" + song + "')");
    }

    void Update() { UpdateDatabaseFromID3(library.run); }
    /// "Track|Minutes|Seconds" of Dawn on both albums.
    std::vector<std::string> Tracks() {
        return library.Rows("SELECT Track, Minutes, Seconds FROM Tracks ORDER BY CDJID");
    }
    std::vector<std::string> Genres() {
        return library.Rows("SELECT Genre FROM Spinner ORDER BY Album");
    }
    const std::vector<std::string>& Log() { return library.host.log; }

    support::TestLibrary library;
};

TEST_F(ID3ToDBTest, SetsMinutesAndSecondsOfTheAlbumNamedInTheRow) {
    AddDifference("Comment", "Length=185");
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("4|3|5", "4|3|0"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(ID3ToDBTest, TakesABareNumberOfSecondsToo) {
    AddDifference("Comment", "59");
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("4|0|59", "4|3|0"));
}

TEST_F(ID3ToDBTest, TakesLengthsUpTo32767Seconds) {
    AddDifference("Comment", "Length=32767");
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("4|546|7", "4|3|0"));
}

TEST_F(ID3ToDBTest, LogsALengthThatIsNoneAndGoesOn) {
    AddDifference("Comment", "Length=40000");
    AddDifference("Comment", "Length=abc");
    AddDifference("Genre", "Jazz");
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("4|3|0", "4|3|0"));
    EXPECT_THAT(Genres(), ElementsAre("Jazz", "Rock"));
    EXPECT_THAT(Log(), ElementsAre("Quillon: UpdateDBfromID3 Line 3 Overflow: Length=40000 "
                                   "(Alder/First Light/Dawn)",
                                   "Quillon: UpdateDBfromID3 Line 3 Type mismatch: Length=abc "
                                   "(Alder/First Light/Dawn)"));
}

TEST_F(ID3ToDBTest, PassesOverTagsWithoutALengthOrGenreSilently) {
    for (const char* value : {"Length=", "", "Length= "})
        AddDifference("Comment", value);
    AddDifference("Genre", "");
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("4|3|0", "4|3|0"));
    EXPECT_THAT(Genres(), ElementsAre("Rock", "Rock"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(ID3ToDBTest, LogsDamagedValuesAndKeepsTheKnownOnes) {
    AddDifference("Comment", "Length=-1");
    AddDifference("Comment", "Length=0");
    AddDifference("Track", "0");
    AddDifference("Track", "-1");
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("4|3|0", "4|3|0"));
    EXPECT_EQ(Log().size(), 4U);
}

/// Several tracks of the names in a row.
class ID3ToDBAmongNamesakesTest : public ID3ToDBTest {
  protected:
    void AddTrack(const std::string& cdjid, int number, int minutes) {
        library.Execute("INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds) VALUES ('" +
                        cdjid + "', " + std::to_string(number) + ", 'Dawn', " +
                        std::to_string(minutes) + ", 0)");
    }
    void AddDifference(const std::string& field, const std::string& value,
                       const std::string& expected) {
        library.Execute(
            "INSERT INTO SpinnerID3Differences (Field, ID3Value, DBValue, Artist, Album, Track) "
            "VALUES ('" +
            field + "', '" + value + "', '" + expected + "', 'Alder', 'First Light', 'Dawn')");
    }
    std::vector<std::string> Namesakes() {
        return library.Rows(
            "SELECT CDJID, Track, Minutes, Seconds FROM Tracks WHERE CDJID <> "
            "'252E671073EC0002' ORDER BY ID");
    }
};

TEST_F(ID3ToDBAmongNamesakesTest, ChangesTheLibrarysOwnBeforeADisc) {
    library.Execute("DELETE * FROM Tracks WHERE CDJID = '252E671073EC0001'");
    library.AddAlbumRow("DISC", "Alder", "First Light", 1, 2);
    AddTrack("DISC", 4, 3);
    AddTrack("252E671073EC0001", 4, 3);
    AddDifference("Comment", "Length=60", "Length=180");
    AddDifference("Track", "7", "4");
    Update();
    EXPECT_THAT(Namesakes(), ElementsAre("DISC|4|3|0", "252E671073EC0001|7|1|0"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(ID3ToDBAmongNamesakesTest, ChangesTheOneThatHadTheValueOfTheRow) {
    AddTrack("252E671073EC0001", 5, 4);
    AddDifference("Comment", "Length=60", "Length=240");
    AddDifference("Track", "7", "4");
    Update();
    EXPECT_THAT(Namesakes(), ElementsAre("252E671073EC0001|7|3|0", "252E671073EC0001|5|1|0"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(ID3ToDBAmongNamesakesTest, ChangesNoneWhereNobodyCanTell) {
    AddTrack("252E671073EC0001", 5, 3);
    AddDifference("Comment", "Length=60", "Length=180");
    AddDifference("Comment", "Length=60", "Length=99");
    Update();
    EXPECT_THAT(Namesakes(), ElementsAre("252E671073EC0001|4|3|0", "252E671073EC0001|5|3|0"));
    EXPECT_THAT(
        Log(), ElementsAre("Quillon: Alder/First Light/Dawn is the name of 2 tracks; which of them "
                           "is meant by Length=60 is not known, and none is changed",
                           "Quillon: Alder/First Light/Dawn is the name of 2 tracks; which of them "
                           "is meant by Length=60 is not known, and none is changed"));
}

TEST_F(ID3ToDBTest, SetsTheGenreInTheDownloadTable) {
    AddDifference("Genre", "Jazz");
    Update();
    EXPECT_THAT(Genres(), ElementsAre("Jazz", "Rock"));
}

TEST_F(ID3ToDBTest, SetsTheTrackNumber) {
    AddDifference("Track", "7");
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("7|3|0", "4|3|0"));
}

TEST_F(ID3ToDBTest, LogsATrackNumberThatIsNoneAndGoesOn) {
    AddDifference("Track", "seven");
    AddDifference("Track", "40000");
    AddDifference("Comment", "Length=60");
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("4|1|0", "4|3|0"));
    EXPECT_THAT(Log(), ElementsAre("Quillon: UpdateDBfromID3 Line 3 Type mismatch: seven "
                                   "(Alder/First Light/Dawn)",
                                   "Quillon: UpdateDBfromID3 Line 3 Overflow: 40000 "
                                   "(Alder/First Light/Dawn)"));
}

TEST_F(ID3ToDBTest, ChangesNothingForNamesAndOtherFields) {
    for (const char* field : {"Song", "Artist", "Album", "Tag", "Year", "Ver",
                              "Track Number Missing", "", "comment", "Other"}) {
        AddDifference(field, "7");
    }
    const auto albums = library.Rows("SELECT * FROM Albums");
    const auto tracks = library.Rows("SELECT * FROM Tracks");
    const auto downloads = library.Rows("SELECT * FROM Spinner");
    Update();
    EXPECT_EQ(library.Rows("SELECT * FROM Albums"), albums);
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks"), tracks);
    EXPECT_EQ(library.Rows("SELECT * FROM Spinner"), downloads);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(ID3ToDBTest, LogsSongsThatHaveNoRow) {
    AddDifference("Comment", "Length=60", "Noon");
    AddDifference("Track", "7", "Noon");
    AddDifference("Genre", "Jazz", "Noon");
    AddDifference("Comment", "Length=60");
    Update();
    EXPECT_THAT(Log(), ElementsAre("Quillon: Unable to Find Alder/Noon in Tracks Table",
                                   "Quillon: Unable to Find Alder/Noon in Tracks Table",
                                   "Quillon: Unable to Find record Alder/First Light/Noon in "
                                   "Spinner Table"));
    EXPECT_THAT(Tracks(), ElementsAre("4|1|0", "4|3|0"));
    EXPECT_THAT(Genres(), ElementsAre("Rock", "Rock"));
}

TEST_F(ID3ToDBTest, ShowsEachRowsArtistRightBehindTheText) {
    AddDifference("Artist", "x", "Dawn", "Birch");
    AddDifference("Artist", "x", "Dawn", "Alder");
    Update();
    EXPECT_THAT(library.calls.Of({"Item"}),
                ElementsAre("Item 1. Update Database with ID3 for ArtistAlder",
                            "Item 1. Update Database with ID3 for ArtistBirch"));
}

TEST_F(ID3ToDBTest, StopsBetweenRowsWhenAbortIsPressed) {
    AddDifference("Comment", "Length=60");
    AddDifference("Genre", "Jazz", "Dawn", "Birch");
    library.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.ends_with("Birch"); });
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("4|1|0", "4|3|0"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(ID3ToDBTest, LogsNamesThatHoldAQuoteAndGoesOn) {
    AddDifference("Comment", "Length=60", "12\" mix");
    AddDifference("Genre", "Jazz", "12\" mix");
    AddDifference("Track", "7");
    Update();
    ASSERT_EQ(Log().size(), 2U);
    for (const std::string& line : Log()) {
        EXPECT_THAT(line, HasSubstr("UpdateDBfromID3 Line 3 Syntax error"));
        EXPECT_THAT(line, HasSubstr("12\" mix"));
    }
    EXPECT_THAT(Tracks(), ElementsAre("7|3|0", "4|3|0"));
}

TEST_F(ID3ToDBTest, LogsAQueryThatFailsAndGoesOn) {
    AddDifference("Genre", "Jazz");
    AddDifference("Track", "7");
    library.Database().Refuse("FROM Spinner WHERE");
    Update();
    EXPECT_THAT(Log(),
                ElementsAre("Quillon: UpdateDBfromID3 Line 3 refused (Alder/First Light/Dawn)"));
    EXPECT_THAT(Tracks(), ElementsAre("7|3|0", "4|3|0"));
}

TEST_F(ID3ToDBTest, LogsDifferencesThatCannotBeRead) {
    library.Database().Refuse("SpinnerID3Differences");
    Update();
    EXPECT_THAT(Log(), ElementsAre("Quillon: UpdateDBfromID3 Line 1 refused"));
}

TEST_F(ID3ToDBTest, ASecondRunChangesNothing) {
    AddDifference("Comment", "Length=185");
    AddDifference("Genre", "Jazz");
    AddDifference("Track", "7");
    Update();
    EXPECT_EQ(library.run.counts.tagValuesStored, 3U);
    const auto tracks = library.Rows("SELECT * FROM Tracks");
    const auto downloads = library.Rows("SELECT * FROM Spinner");
    Update();
    EXPECT_EQ(library.run.counts.tagValuesStored, 3U);
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks"), tracks);
    EXPECT_EQ(library.Rows("SELECT * FROM Spinner"), downloads);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(ID3ToDBTest, ReadsNoDifferencesAsNothingToDo) {
    Update();
    EXPECT_THAT(library.calls.Of({"Item"}), IsEmpty());
    EXPECT_THAT(Log(), IsEmpty());
}

}  // namespace
}  // namespace quillon
