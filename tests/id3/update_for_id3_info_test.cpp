#include "id3/track_of_file.h"
#include "tests/id3/verify_fixture.h"

namespace quillon {
namespace {

using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class UpdateForID3InfoTest : public VerifyTest {
  protected:
    UpdateForID3InfoTest() { AddRow("Alder - Dawn.mp3", "Dawn"); }

    void Update() {
        UpdateForID3Info(library.run, file);
        TakeNumbers();
    }

    std::vector<std::string> Lengths() {
        return library.Rows("SELECT Minutes, Seconds FROM Tracks ORDER BY ID");
    }

    ComparedFile file{
        .path = PathOf("Alder - Dawn.mp3"), .newTitle = {}, .track = {}, .seconds = {}};
};

TEST_F(UpdateForID3InfoTest, TakesNumberAndLength) {
    file.track = "7";
    file.seconds = "185";
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|7|1"));
    EXPECT_THAT(Lengths(), ElementsAre("3|5"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(UpdateForID3InfoTest, KeepsAKnownNumberWhereTheTagHasNone) {
    for (const char* number : {"-1", "0", ""}) {
        file.track = number;
        Update();
        EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|1|1")) << number;
    }
    EXPECT_EQ(library.Database().Count("Update Tracks"), 0U);
}

TEST_F(UpdateForID3InfoTest, KeepsAKnownLength) {
    library.Execute("UPDATE Tracks SET Minutes=3, Seconds=0");
    for (const char* seconds : {"185", "-1", "0", ""}) {
        file.seconds = seconds;
        Update();
        EXPECT_THAT(Lengths(), ElementsAre("3|0")) << seconds;
    }
}

TEST_F(UpdateForID3InfoTest, TakesNothingThatIsNotNumeric) {
    file.seconds = "3 min";
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|1|1"));
    EXPECT_THAT(Lengths(), ElementsAre("-1|-1"));
    EXPECT_EQ(library.Database().Count("Update Tracks"), 0U);
}

TEST_F(UpdateForID3InfoTest, GivesARenamedFilesRowItsPathAndTitle) {
    library.Execute("UPDATE Tracks SET SoundFile='x" + PathOf("alder - dusk.MP3") + "'");
    file.path = PathOf("Alder - Dusk.mp3");
    file.newTitle = "Dusk";
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|1|1"));
}

TEST_F(UpdateForID3InfoTest, TakesLongLengthsAndLogsThoseThatNoFieldHolds) {
    file.seconds = "36000";
    Update();
    EXPECT_THAT(Lengths(), ElementsAre("600|0"));
    EXPECT_THAT(library.host.log, IsEmpty());
    library.Execute("UPDATE Tracks SET Minutes=-1, Seconds=-1");
    file.seconds = "1999999999";
    Update();
    file.seconds = "1e300";
    Update();
    EXPECT_THAT(Lengths(), ElementsAre("-1|-1"));
    ASSERT_EQ(library.host.log.size(), 2U);
    for (const std::string& line : library.host.log) {
        EXPECT_THAT(line, ::testing::StartsWith("Quillon: Update for ID3 Info Error: Line "));
        EXPECT_THAT(line, ::testing::HasSubstr("verflow"));
        EXPECT_THAT(line, ::testing::EndsWith(" (" + file.path + ")"));
    }
}

TEST_F(UpdateForID3InfoTest, LeavesALengthThatIsNotAboveZero) {
    for (const char* seconds : {"-30", "0"}) {
        file.seconds = seconds;
        Update();
        EXPECT_THAT(Lengths(), ElementsAre("-1|-1"));
    }
}

// A number above 0 would keep the row of a file that has gone from the sweep.
TEST_F(UpdateForID3InfoTest, LeavesARowOfAnotherFile) {
    library.Execute(
        R"(UPDATE Tracks SET SoundFile='E:\Old\Alder\First Light\Alder - Dawn.mp3', Track=0)");
    file.track = "7";
    Update();
    EXPECT_THAT(library.Rows("SELECT Track FROM Tracks"), ElementsAre("0"));
}

TEST_F(UpdateForID3InfoTest, LeavesTheDiscsOfThePlayers) {
    library.Execute("UPDATE Albums SET Player=1");
    file.track = "7";
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|1|1"));
}

TEST_F(UpdateForID3InfoTest, FindsTheFilesRowBehindOthersOfItsTitle) {
    library.AddAlbumRow("DISC", "Alder", "First Light", 1, 2);
    library.AddTrackRow("DISC", 8, "", "Dawn");
    AddRow("Dawn.mp3", "Dawn");
    file.path = PathOf("Dawn.mp3");
    file.track = "7";
    Update();
    EXPECT_THAT(library.Rows("SELECT Track FROM Tracks ORDER BY ID"), ElementsAre("1", "8", "7"));
}

TEST_F(UpdateForID3InfoTest, FindsTheFilesRowWhateverItsTitle) {
    library.Execute("UPDATE Tracks SET Title='Something else'");
    file.track = "7";
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Something else|7|1"));
}

TEST_F(UpdateForID3InfoTest, DoesNothingForAFileWithoutRow) {
    file.path = PathOf("Dawn.mp3");
    file.track = "7";
    Update();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|1|1"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(UpdateForID3InfoTest, LogsFailuresWithTheFile) {
    file.seconds = "185";
    library.Database().Refuse("Update Tracks");
    Update();
    EXPECT_THAT(
        library.host.log,
        ElementsAre("Quillon: Update for ID3 Info Error: Line 7 refused (" + file.path + ")"));
    EXPECT_THAT(Lengths(), ElementsAre("-1|-1"));
}

TEST_F(UpdateForID3InfoTest, KeepsTheLengthOfTheDatabaseAndFillsInAnUnknownOne) {
    RawTag tag = TagOf("Dawn");
    tag.comment = "Length='184'";
    AddFile("Alder - Dawn.mp3", tag);
    Verify();
    EXPECT_THAT(Lengths(), ElementsAre("3|4"));
    library.Execute("UPDATE Tracks SET Minutes=2, Seconds=0");
    Verify();
    EXPECT_THAT(Lengths(), ElementsAre("2|0"));
}

}  // namespace
}  // namespace quillon
