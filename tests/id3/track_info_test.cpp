#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "id3/track_of_file.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TrackInfoTest : public ::testing::Test {
  protected:
    TrackInfoTest() {
        library.AddAlbumRow("C1", "Alder", "First Light", 2);
        library.AddTrackRow("C1", 4, First, "Dawn");
        library.AddAlbumRow("C2", "Alder", "Second Light", 1);
        library.AddTrackRow("C2", 9, Second, "Dawn");
    }

    /// As "seconds|track".
    std::string InfoOf(const std::string& path, const std::string& newPath = "") {
        const TrackInfo info = GetID3TrackInfo(library.run, path, newPath);
        return info.seconds + "|" + info.track;
    }
    std::string InfoWith(const std::string& minutes, const std::string& seconds) {
        library.Execute("UPDATE Tracks SET Minutes=" + minutes + ", Seconds=" + seconds);
        return InfoOf(First);
    }

    static constexpr const char* First = R"(D:\Music\Alder\First Light\Dawn.mp3)";
    static constexpr const char* Second = R"(D:\Music\Alder\Second Light\Dawn.mp3)";

    support::TestLibrary library;
};

TEST_F(TrackInfoTest, GivesLengthAndNumberOfTheFilesOwnRow) {
    EXPECT_EQ(InfoWith("3", "5"), "185|4");
    EXPECT_EQ(InfoOf(R"(d:\music\ALDER\second light\dawn.mp3)"), "185|9");
}

TEST_F(TrackInfoTest, LeavesRowsOfTheSameNamesToTheirFiles) {
    library.AddAlbumRow("DISC", "Alder", "First Light", 1, 2);
    library.Execute(
        "INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds) VALUES "
        "('DISC', 7, 'Dawn', 9, 9)");
    library.AddTrackRow("C1", 6, R"(D:\Music\Alder\First Light\Alder - Dawn.mp3)", "Dawn");
    library.Execute("UPDATE Tracks SET Minutes=1, Seconds=0 WHERE Track=6");
    EXPECT_EQ(InfoOf(R"(D:\Music\Alder\First Light\Alder - Dawn.mp3)"), "60|6");
    EXPECT_EQ(InfoOf(R"(E:\Alder\First Light\Dawn.mp3)"), "|");
}

TEST_F(TrackInfoTest, FindsTheRowThatAnInterruptedRunHasLedOn) {
    EXPECT_EQ(InfoOf(R"(D:\Music\Alder\First Light\01.mp3)", First), "|4");
    library.Execute(
        R"(UPDATE Tracks SET SoundFile='D:\Music\Alder\First Light\01.quillon-renaming.mp3')"
        " WHERE Track=4");
    EXPECT_EQ(InfoOf(R"(D:\Music\Alder\First Light\01.mp3)", First), "|4");
    EXPECT_EQ(InfoOf(R"(D:\Music\Alder\First Light\01.mp3)"), "|");
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

TEST_F(TrackInfoTest, IsEmptyForAFileWithoutRow) {
    EXPECT_EQ(InfoOf(R"(D:\Music\Alder\First Light\Dusk.mp3)"), "|");
}

TEST_F(TrackInfoTest, LogsAFailureWithTheFile) {
    library.Database().Refuse("Scan Tracks");
    EXPECT_EQ(InfoOf(First), "|");
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Get ID3 Track Info Error: Line 1 refused (" +
                            std::string(First) + ")"));
}

}  // namespace
}  // namespace quillon
