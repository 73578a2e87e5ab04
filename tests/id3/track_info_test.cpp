#include "id3/track_info.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TrackInfoTest : public ::testing::Test {
  protected:
    TrackInfoTest() {
        library.AddAlbumRow("C1", "Alder", "First Light", 2);
        library.AddTrackRow("C1", 4, R"(D:\Music\Alder\First Light\Dawn.mp3)", "Dawn");
        library.AddAlbumRow("C2", "Alder", "Second Light", 1);
        library.AddTrackRow("C2", 9, R"(D:\Music\Alder\Second Light\Dawn.mp3)", "Dawn");
    }

    std::string InfoWith(const std::string& minutes, const std::string& seconds) {
        library.Execute("UPDATE Tracks SET Minutes=" + minutes + ", Seconds=" + seconds);
        return GetID3TrackInfo(library.run, "Alder", "First Light", "Dawn");
    }

    support::TestLibrary library;
};

TEST_F(TrackInfoTest, GivesLengthAndNumberOfTheSongOnThisAlbum) {
    EXPECT_EQ(InfoWith("3", "5"), "185|4");
    EXPECT_EQ(GetID3TrackInfo(library.run, "alder", "SECOND light", "dawn"), "185|9");
}

TEST_F(TrackInfoTest, GivesNoLengthWhereNeitherPartIsAboveZero) {
    EXPECT_EQ(InfoWith("-1", "-1"), "|4");
    EXPECT_EQ(InfoWith("0", "0"), "|4");
    EXPECT_EQ(InfoWith("Null", "Null"), "|4");
    EXPECT_EQ(InfoWith("0", "7"), "7|4");
    EXPECT_EQ(InfoWith("2", "0"), "120|4");
}

TEST_F(TrackInfoTest, DoesNotOverflowForLongTracks) {
    EXPECT_EQ(InfoWith("600", "0"), "36000|4");
}

TEST_F(TrackInfoTest, IsEmptyForAnUnknownSong) {
    EXPECT_EQ(GetID3TrackInfo(library.run, "Alder", "First Light", "Dusk"), "|");
    EXPECT_EQ(GetID3TrackInfo(library.run, "Other", "First Light", "Dawn"), "|");
}

TEST_F(TrackInfoTest, LogsAFailureWithTheSong) {
    EXPECT_EQ(GetID3TrackInfo(library.run, "Alder", "First Light", "The \"Dawn\""), "|");
    library.Database().Refuse("SELECT Tracks.Track");
    EXPECT_EQ(GetID3TrackInfo(library.run, "Alder", "First Light", "Dawn"), "|");
    EXPECT_THAT(
        library.host.log,
        ElementsAre(
            "Quillon: Get ID3 Track Info Error: Line 1 Syntax error (missing operator) in query "
            "expression: The \"Dawn\" (Alder\\First Light\\The \"Dawn\")",
            "Quillon: Get ID3 Track Info Error: Line 1 refused (Alder\\First Light\\Dawn)"));
}

TEST_F(TrackInfoTest, GenreIsThatOfTheFirstRowOfTheSong) {
    for (const char* genre : {"Folk", "Rock"}) {
        library.Execute(
            "INSERT INTO Spinner (Artist, Album, Song, Genre) VALUES ('Alder', 'First Light', "
            "'Dawn', '" +
            std::string(genre) + "')");
    }
    EXPECT_EQ(GetID3Genre(library.run, "Alder", "First Light", "Dawn"), "Folk");
    EXPECT_EQ(GetID3Genre(library.run, "Alder", "First Light", "Dusk"), "");
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(TrackInfoTest, LogsAFailureToFindAGenre) {
    library.Database().Refuse("FROM Spinner");
    EXPECT_EQ(GetID3Genre(library.run, "Alder", "First Light", "Dawn"), "");
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Get ID3 Genre Error: Line 1 refused (Alder\\First "
                            "Light\\Dawn)"));
}

}  // namespace
}  // namespace quillon
