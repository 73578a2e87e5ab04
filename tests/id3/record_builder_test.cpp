#include "id3/record_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GetID3InfoTest : public ::testing::Test {
  protected:
    GetID3InfoTest() { library.AddAlbumRow("252E671073EC0001", "Alder", "First Light", 1); }

    void AddTrack(int number, int minutes, int seconds) {
        library.Execute(
            "INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds) VALUES "
            "(\"252E671073EC0001\", " +
            std::to_string(number) + ", \"Dawn\", " + std::to_string(minutes) + ", " +
            std::to_string(seconds) + ")");
    }
    void AddDownload(const std::string& genre, int length, const std::string& link = "") {
        library.Execute(
            "INSERT INTO Spinner (Artist, Album, Song, Genre, Length, FileName) VALUES "
            "(\"Alder\", \"First Light\", \"Dawn\", " +
            genre + ", " + std::to_string(length) + ", \"" + link + "\")");
    }

    BuiltTag Build() { return GetID3Info(library.run, Path, names, present); }
    std::string Record() { return TagRecord(Build().tag); }

    static constexpr const char* Path = R"(D:\Music\Alder\First Light\Alder - Dawn.mp3)";
    SongNames names{.artist = "Alder", .album = "First Light", .song = "Dawn"};

    support::TestLibrary library;
    Tag present;
};

TEST_F(GetID3InfoTest, MakesAWholeTag) {
    AddTrack(4, 3, 5);
    AddDownload("\"Rock\"", 0);
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='185'||4|Rock|");
}

TEST_F(GetID3InfoTest, KeepsWhatOnlyTheTagKnows) {
    present.year = "1999";
    present.comment = "a comment";
    present.track = "9";
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light|1999|a comment||9||");
    EXPECT_FALSE(Build().lengthKnown);
    EXPECT_FALSE(Build().trackKnown);
}

TEST_F(GetID3InfoTest, KeepsALengthThatTheDatabaseDoesNotKnow) {
    AddTrack(4, -1, -1);
    present.comment = "Length='99'";
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='99'||4||");
}

TEST_F(GetID3InfoTest, PrefersTheLengthOfTheTrackToThatOfTheDownload) {
    AddDownload("\"Rock\"", 200);
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='200'|||Rock|");
    AddTrack(4, 3, 5);
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='185'||4|Rock|");
    EXPECT_EQ(library.Database().Count("Read Spinner"), 1U);
}

TEST_F(GetID3InfoTest, TakesLengthsAbove32767Seconds) {
    AddTrack(4, 600, 7);
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='36007'||4||");
}

TEST_F(GetID3InfoTest, TakesNoLengthThatIsNone) {
    AddDownload("\"Rock\"", -5);
    AddTrack(4, 0, 0);
    EXPECT_FALSE(Build().lengthKnown);
    library.Execute("UPDATE Tracks SET Minutes = 1, Seconds = -100");
    EXPECT_FALSE(Build().lengthKnown);
    library.Execute("UPDATE Tracks SET Minutes = Null, Seconds = Null");
    EXPECT_FALSE(Build().lengthKnown);
}

TEST_F(GetID3InfoTest, TakesNoNumberThatATagCannotHold) {
    AddTrack(0, 3, 5);
    present.track = "9";
    for (const char* number : {"0", "-1", "256", "Null"}) {
        library.Execute("UPDATE Tracks SET Track = " + std::string(number));
        EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='185'||9||") << number;
    }
    library.Execute("UPDATE Tracks SET Track = 255");
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='185'||255||");
}

TEST_F(GetID3InfoTest, TakesTheGenreOfTheRowBeforeThatOfItsLink) {
    AddDownload("\"Rock\"", 0, "rtsp://host/spinlinks/000-Jazz-000.rm");
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light|||||Rock|");
}

TEST_F(GetID3InfoTest, TakesTheGenreOfTheLinkWhereTheRowHasNone) {
    AddDownload("Null", 0, "rtsp://host/spinlinks/000-Jazz-000.rm");
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light|||||Jazz|");
}

TEST_F(GetID3InfoTest, TakesNoGenreWhereTheRowsIsAnEmptyText) {
    AddDownload("\"\"", 0, "rtsp://host/spinlinks/000-Jazz-000.rm");
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||||||");
}

TEST_F(GetID3InfoTest, TakesOnlyRowsOfTheSameAlbum) {
    library.AddAlbumRow("252E671073EC0002", "Alder", "Second Light", 1);
    library.Execute(
        "INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds) VALUES "
        "(\"252E671073EC0002\", 7, \"Dawn\", 1, 1)");
    library.Execute(
        "INSERT INTO Spinner (Artist, Album, Song, Genre, Length) VALUES (\"Alder\", "
        "\"Second Light\", \"Dawn\", \"Jazz\", 5)");
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||||||");
}

TEST_F(GetID3InfoTest, TakesNumberAndLengthOfTheFilesOwnRow) {
    AddTrack(4, 3, 5);
    library.AddTrackRow("252E671073EC0001", 6, Path, "Some title");
    library.Execute("UPDATE Tracks SET Minutes = 2, Seconds = 0 WHERE Track = 6");
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='120'||6||");
}

TEST_F(GetID3InfoTest, TakesAnOwnedRowBeforeThatOfADisc) {
    library.AddAlbumRow("DISC", "Alder", "First Light", 1, 2);
    library.Execute(
        "INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds) VALUES "
        "(\"DISC\", 9, \"Dawn\", 9, 9)");
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='549'||9||");
    AddTrack(4, 3, 5);
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='185'||4||");
}

TEST_F(GetID3InfoTest, KeepsATextThatSaysMoreThanTheNameCan) {
    names = {.artist = "AC-DC", .album = "Act 1 Dawn", .song = "Who Me (live)"};
    present.song = "Who? Me [live]";
    present.artist = "AC/DC";
    present.album = "Act 1: Dawn";
    EXPECT_EQ(Record(), "TAG|Who? Me [live]|AC/DC|Act 1: Dawn||||||");
}

TEST_F(GetID3InfoTest, ReplacesATextThatSaysSomethingElse) {
    names.artist = "AC-DC";
    present.song = "Who? Me [live]";
    present.artist = "AC/DS";
    present.album = "first light";
    EXPECT_EQ(Record(), "TAG|Dawn|AC-DC|First Light||||||");
}

TEST_F(GetID3InfoTest, KeepsATitleToWhichTheNameAddsANumber) {
    names.song = "01 - A title that no tag can hold";
    present.song = "A title that no tag";
    EXPECT_EQ(Record(), "TAG|A title that no tag|Alder|First Light||||||");
    present.song = "Something else";
    EXPECT_EQ(Record(), "TAG|01 - A title that no tag can hold|Alder|First Light||||||");
}

TEST_F(GetID3InfoTest, KeepsATextInOtherLettersThanTheCodePageHas) {
    names.song = "初恋 その一";
    names.artist = "ёлка";
    present.song = "初恋";
    present.artist = "Ёлка";
    EXPECT_EQ(Record(), "TAG|初恋|Ёлка|First Light||||||");
}

TEST_F(GetID3InfoTest, LogsEachLookUpThatFailsAndGoesOn) {
    present.year = "1999";
    library.Database().Refuse("Scan Tracks");
    library.Database().Refuse("Scan Spinner");
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light|1999|||||");
    const std::string end = " refused (" + std::string(Path) + ")";
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: GetID3Info Management Line 1" + end,
                                              "Quillon: GetID3Info Management Line 2" + end,
                                              "Quillon: GetID3Info Management Line 3" + end));
}

TEST_F(GetID3InfoTest, CountsTracksFromTheFirstOfTheirDisc) {
    library.AddTrackRow("252E671073EC0001", 2, R"(D:\Music\Alder\First Light\CD1\a.mp3)", "a");
    library.AddTrackRow("252E671073EC0001", 3, R"(D:\Music\Alder\First Light\CD2\b.mp3)", "b");
    library.AddTrackRow("252E671073EC0001", 4, R"(D:\Music\Alder\First Light\Disc 2\c.mp3)", "c");
    const auto number = [this](const char* path) {
        return GetID3Info(library.run, path, names, present).tag.track;
    };
    constexpr const char* Third = R"(D:\Music\Alder\First Light\Disc 2\c.mp3)";
    EXPECT_EQ(number(Third), "4");
    library.run.modern.joinsDiscs = true;
    EXPECT_EQ(number(Third), "2");
    EXPECT_EQ(number(R"(D:\Music\Alder\First Light\CD1\a.mp3)"), "1");
}

TEST_F(GetID3InfoTest, LeavesTheNumberOfAnotherDiscThatTheTagAloneNames) {
    library.AddTrackRow("252E671073EC0001", 12, Path, "Dawn");
    present.track = "2";
    present.disc = "2";
    EXPECT_EQ(Build().tag.track, "12");
    library.run.modern.joinsDiscs = true;
    EXPECT_EQ(Build().tag.track, "2");
}

TEST_F(GetID3InfoTest, LeavesTheArtistThatATrackHasForItself) {
    library.AddTrackRow("252E671073EC0001", 1, Path, "Dawn");
    library.Execute("UPDATE Tracks SET Artist='Birch'");
    present.artist = "Birch";
    EXPECT_EQ(Build().tag.artist, "Alder");
    library.run.modern.keepsTrackArtists = true;
    EXPECT_EQ(Build().tag.artist, "Birch");
    present.artist = "";
    EXPECT_EQ(Build().tag.artist, "Birch");
}

}  // namespace
}  // namespace quillon
