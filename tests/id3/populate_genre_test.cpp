#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "id3/song_genre.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PopulateGenreTest : public ::testing::Test {
  protected:
    PopulateGenreTest() { library.run.settings.ID3Reconcile = true; }

    void AddRow(const std::string& song, const std::string& genre, const std::string& fileName) {
        library.Execute(
            "INSERT INTO Spinner (Artist, Album, Song, Genre, FileName) VALUES ('A', "
            "'B', '" +
            song + "', " + genre + ", " + fileName + ")");
    }
    std::vector<std::string> Genres() {
        return library.Rows("SELECT Genre FROM Spinner ORDER BY ID");
    }

    std::string Genre(const std::string& album, const std::string& song) {
        return library.run.GenreDictionary.Find("A", album, song);
    }
    std::size_t Known() { return library.run.GenreDictionary.Size(); }

    support::TestLibrary library;
};

TEST_F(PopulateGenreTest, FillsTheDictionaryByArtistAlbumAndSong) {
    AddRow("One", "'Folk'", "'x'");
    AddRow("Two", "'Rock'", "'x'");
    PopulateGenre(library.run);
    EXPECT_EQ(Known(), 2U);
    EXPECT_EQ(Genre("B", "One"), "Folk");
    EXPECT_EQ(Genre("B", "Two"), "Rock");
    EXPECT_EQ(library.Database().Count("Update Spinner"), 0U);
}

TEST_F(PopulateGenreTest, LetsTheFirstRowOfASongCount) {
    AddRow("One", "'Folk'", "'x'");
    AddRow("One", "'Rock'", "'x'");
    AddRow("one", "'Jazz'", "'x'");
    PopulateGenre(library.run);
    EXPECT_EQ(Known(), 2U);
    EXPECT_EQ(Genre("B", "One"), "Folk");
    EXPECT_EQ(Genre("B", "one"), "Jazz");
}

TEST_F(PopulateGenreTest, DerivesAMissingGenreFromTheFileNameAndStoresIt) {
    AddRow("One", "Null", "'rtsp://host/spinlinks/000-Folk-000.rm'");
    AddRow("Two", "Null", "'C:\\\\my-files\\\\1-Hip Hop-x-y.rm'");
    PopulateGenre(library.run);
    EXPECT_EQ(Known(), 2U);
    EXPECT_EQ(Genre("B", "One"), "Folk");
    EXPECT_EQ(Genre("B", "Two"), "Hip Hop");
    EXPECT_THAT(Genres(), ElementsAre("Folk", "Hip Hop"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(PopulateGenreTest, CallsAGenreOtherThatTheFileNameDoesNotTell) {
    for (const char* fileName : {"Null", "''", "'song.rm'", "'000-Folk.rm'", "'000--000.rm'",
                                 "'rtsp://a-b-c/x.rm'", "'000-Folk.tail-x'"}) {
        AddRow("One", "Null", fileName);
    }
    PopulateGenre(library.run);
    EXPECT_THAT(Genres(),
                ElementsAre("other", "other", "other", "other", "other", "other", "other"));
}

TEST_F(PopulateGenreTest, LeavesAnEmptyGenreAsItStands) {
    AddRow("One", "''", "'000-Folk-000.rm'");
    PopulateGenre(library.run);
    EXPECT_EQ(Known(), 1U);
    EXPECT_EQ(Genre("B", "One"), "");
    EXPECT_THAT(Genres(), ElementsAre(""));
}

TEST_F(PopulateGenreTest, TakesNullInAKeyForNothing) {
    library.Execute("INSERT INTO Spinner (Artist, Song, Genre) VALUES ('A', 'One', 'Folk')");
    PopulateGenre(library.run);
    EXPECT_EQ(Known(), 1U);
    EXPECT_EQ(Genre("", "One"), "Folk");
}

TEST_F(PopulateGenreTest, DoesNothingWithAnEmptyTable) {
    PopulateGenre(library.run);
    EXPECT_EQ(Known(), 0U);
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(PopulateGenreTest, GoesOnBehindARowThatCannotBeStored) {
    AddRow("One", "Null", "'000-Folk-000.rm'");
    AddRow("Two", "Null", "'000-Rock-000.rm'");
    library.Database().RefuseValue("Genre", "Folk");
    PopulateGenre(library.run);
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: PopulateGenre: Line 2 refused (ABOne)"));
    EXPECT_EQ(Known(), 2U);
    EXPECT_EQ(Genre("B", "One"), "Folk");
    EXPECT_EQ(Genre("B", "Two"), "Rock");
    EXPECT_THAT(Genres(), ElementsAre("Null", "Rock"));
}

TEST_F(PopulateGenreTest, KeepsNoDictionaryThatNoComparisonOfTagsAsks) {
    library.run.settings.ID3Reconcile = false;
    AddRow("One", "'Folk'", "'x'");
    AddRow("Two", "Null", "'000-Rock-000.rm'");
    PopulateGenre(library.run);
    EXPECT_EQ(Known(), 0U);
    EXPECT_THAT(Genres(), ElementsAre("Folk", "Rock"));
}

TEST_F(PopulateGenreTest, LogsATableThatCannotBeOpened) {
    library.Database().Refuse("Scan Spinner");
    PopulateGenre(library.run);
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: PopulateGenre: Line 0 refused"));
}

}  // namespace
}  // namespace quillon
