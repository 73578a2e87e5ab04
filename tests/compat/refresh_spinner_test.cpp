#include "compat/refresh_spinner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/sql.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class RefreshSpinnerTest : public ::testing::Test {
  protected:
    void AddDownload(const std::string& artist, const std::string& album, const std::string& song,
                     int playcount = 0) {
        library.Execute("INSERT INTO Spinner (Artist, Album, Song, Playcount) VALUES (" +
                        FilterQuoted(artist) + ", " + FilterQuoted(album) + ", " +
                        FilterQuoted(song) + ", " + std::to_string(playcount) + ")");
    }
    void AddSound(const std::string& path) { library.AddTrackRow("A1", 1, path); }
    void Refresh() { RefreshSpinner(library.run); }
    std::vector<std::string> Songs() {
        return library.Rows("SELECT ID, Song, Playcount FROM Spinner ORDER BY ID");
    }

    support::TestLibrary library;
};

TEST_F(RefreshSpinnerTest, KeepsSongsWhoseFileIsInTheLibraryUnderAnyRoot) {
    AddSound(R"(D:\Music\Ann\First\Ann - One.mp3)");
    AddSound(R"(\\nas\music\Bob\Second\Bob - Two.mp3)");
    AddDownload("Ann", "First", "One");
    AddDownload("bob", "SECOND", "two");
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("1|One|0", "2|two|0"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(RefreshSpinnerTest, DeletesSongsWhoseFileIsGoneOrNamedOtherwise) {
    AddSound(R"(D:\Music\Ann\First\01 - One.mp3)");
    AddSound(R"(D:\Music\Ann\First\Ann - Two.mp3)");
    AddDownload("Ann", "First", "One");
    AddDownload("Ann", "First", "Two");
    AddDownload("Ann", "Second", "Two");
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("2|Two|0"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(RefreshSpinnerTest, DeletesARowWithoutANameWithoutLookingAnythingUp) {
    library.Execute("INSERT INTO Spinner (Artist, Album) VALUES ('Ann', 'First')");
    library.Execute("INSERT INTO Spinner (Artist, Song) VALUES ('Ann', 'One')");
    library.Execute("INSERT INTO Spinner (Album, Song) VALUES ('First', 'One')");
    Refresh();
    EXPECT_THAT(Songs(), IsEmpty());
    EXPECT_EQ(library.Database().Count("SELECT ID FROM Tracks"), 0U);
}

TEST_F(RefreshSpinnerTest, TakesSignsThatStandForOthersAsTheyAre) {
    AddSound(R"(D:\Music\100%\[live]\100% - a_b #1.mp3)");
    AddDownload("100%", "[live]", "a_b #1");
    AddDownload("100%", "[live]", "axb #1");
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("1|a_b #1|0"));
}

TEST_F(RefreshSpinnerTest, LogsANameWithADoubleQuoteAndLeavesItsRow) {
    AddDownload("Ann", "First", "12\" Mix");
    AddDownload("Ann", "First", "Gone");
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("1|12\" Mix|0"));
    EXPECT_THAT(library.host.log,
                ElementsAre(StartsWith("Quillon: Refresh Spinner Error: Line 1 ")));
}

TEST_F(RefreshSpinnerTest, MergesRowsOfOneSongAndAddsUpTheirPlayCounts) {
    AddSound(R"(D:\Music\Ann\First\Ann - One.mp3)");
    AddSound(R"(D:\Music\Ann\First\Ann - Two.mp3)");
    AddDownload("Ann", "First", "One", 2);
    AddDownload("Ann", "First", "Two", 5);
    AddDownload("Ann", "First", "One", 3);
    AddDownload("ANN", "first", "ONE", 4);
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("1|One|9", "2|Two|5"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(RefreshSpinnerTest, KeepsSongsOfOneTitleOnDifferentAlbums) {
    AddSound(R"(D:\Music\Ann\First\Ann - One.mp3)");
    AddSound(R"(D:\Music\Ann\Second\Ann - One.mp3)");
    AddDownload("Ann", "First", "One", 2);
    AddDownload("Ann", "Second", "One", 3);
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("1|One|2", "2|One|3"));
}

TEST_F(RefreshSpinnerTest, MergesAMissingPlayCountAsNone) {
    AddSound(R"(D:\Music\Ann\First\Ann - One.mp3)");
    library.Execute("INSERT INTO Spinner (Artist, Album, Song) VALUES ('Ann', 'First', 'One')");
    AddDownload("Ann", "First", "One", 3);
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("1|One|3"));
}

TEST_F(RefreshSpinnerTest, LogsASumThatDoesNotFitAndLeavesBothRows) {
    AddSound(R"(D:\Music\Ann\First\Ann - One.mp3)");
    AddDownload("Ann", "First", "One", 32767);
    AddDownload("Ann", "First", "One", 1);
    AddDownload("Ann", "First", "One", 0);
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("1|One|32767", "2|One|1"));
    EXPECT_THAT(library.host.log,
                ElementsAre(StartsWith("Quillon: Refresh Spinner Error: Line 2 ")));
}

TEST_F(RefreshSpinnerTest, LogsARowThatHasVanishedAndDeletesNoOther) {
    AddSound(R"(D:\Music\Ann\First\Ann - One.mp3)");
    AddDownload("Ann", "First", "One", 2);
    AddDownload("Ann", "First", "One", 3);
    library.Database().BeforeStatement(
        "Filter Spinner ID=1", [this] { library.Execute("DELETE * FROM Spinner WHERE ID=1"); });
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("2|One|3"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Refresh Spinner Error: Line 2 Download record missing for "
                            "ID 1 (Ann\\First\\One)"));
}

TEST_F(RefreshSpinnerTest, GoesOnWithItsSecondStepWhenTheFirstFails) {
    AddDownload("Ann", "First", "One", 2);
    AddDownload("Ann", "First", "One", 3);
    library.Database().Refuse("SELECT ID FROM Tracks");
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("1|One|5"));
    EXPECT_EQ(library.host.log.size(), 2U);
}

TEST_F(RefreshSpinnerTest, ChangesNothingTheSecondTime) {
    AddSound(R"(D:\Music\Ann\First\Ann - One.mp3)");
    AddDownload("Ann", "First", "One", 2);
    AddDownload("Ann", "First", "One", 3);
    Refresh();
    Refresh();
    EXPECT_THAT(Songs(), ElementsAre("1|One|5"));
}

TEST_F(RefreshSpinnerTest, ShowsItsStepsAndLetsEventsRunOnEachRow) {
    AddDownload("Ann", "First", "One");
    AddDownload("Ann", "First", "Two");
    Refresh();
    EXPECT_THAT(library.calls.Of({"Item"}),
                ElementsAre("Item 1. Verify Download Tracks are in Database",
                            "Item 2. Remove Download Track Duplicates"));
    EXPECT_GE(library.window.events, 4);
}

TEST_F(RefreshSpinnerTest, RunsTheStatementsAsOtherProgramsKnowThem) {
    AddDownload("Ann", "First", "One");
    Refresh();
    EXPECT_EQ(library.Database().Count("SELECT ID FROM Tracks WHERE SoundFile Like "
                                       "\"%Ann\\First\\Ann - One.mp3\""),
              1U);
    EXPECT_EQ(
        library.Database().Count(
            "SELECT Spinner.Artist, Spinner.Album, Spinner.Song, Spinner.ID, Spinner.Playcount "
            "FROM Spinner WHERE (((Spinner.Artist) In (SELECT [Artist] FROM [Spinner] As Tmp GROUP "
            "BY [Artist],[Album],[Song] HAVING Count(*)>1  And [Album] = [Spinner].[Album] And "
            "[Song] = [Spinner].[Song]))) ORDER BY Spinner.Artist, Spinner.Album, Spinner.Song"),
        1U);
}

}  // namespace
}  // namespace quillon
