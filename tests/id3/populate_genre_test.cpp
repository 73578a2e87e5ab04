#include "id3/populate_genre.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

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

    support::TestLibrary library;
};

TEST_F(PopulateGenreTest, FillsTheDictionaryByArtistAlbumAndSong) {
    AddRow("One", "'Folk'", "'x'");
    AddRow("Two", "'Rock'", "'x'");
    PopulateGenre(library.run);
    EXPECT_THAT(library.run.GenreDictionary,
                UnorderedElementsAre(Pair("ABOne", "Folk"), Pair("ABTwo", "Rock")));
    EXPECT_EQ(library.Database().Count("Update Spinner"), 0U);
}

TEST_F(PopulateGenreTest, LetsTheFirstRowOfASongCount) {
    AddRow("One", "'Folk'", "'x'");
    AddRow("One", "'Rock'", "'x'");
    AddRow("one", "'Jazz'", "'x'");
    PopulateGenre(library.run);
    EXPECT_THAT(library.run.GenreDictionary,
                UnorderedElementsAre(Pair("ABOne", "Folk"), Pair("ABone", "Jazz")));
}

TEST_F(PopulateGenreTest, DerivesAMissingGenreFromTheFileNameAndStoresIt) {
    AddRow("One", "Null", "'rtsp://host/spinlinks/000-Folk-000.rm'");
    AddRow("Two", "Null", "'C:\\\\my-files\\\\1-Hip Hop-x-y.rm'");
    PopulateGenre(library.run);
    EXPECT_THAT(library.run.GenreDictionary,
                UnorderedElementsAre(Pair("ABOne", "Folk"), Pair("ABTwo", "Hip Hop")));
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
    EXPECT_THAT(library.run.GenreDictionary, UnorderedElementsAre(Pair("ABOne", "")));
    EXPECT_THAT(Genres(), ElementsAre(""));
}

TEST_F(PopulateGenreTest, TakesNullInAKeyForNothing) {
    library.Execute("INSERT INTO Spinner (Artist, Song, Genre) VALUES ('A', 'One', 'Folk')");
    PopulateGenre(library.run);
    EXPECT_THAT(library.run.GenreDictionary, UnorderedElementsAre(Pair("AOne", "Folk")));
}

TEST_F(PopulateGenreTest, DoesNothingWithAnEmptyTable) {
    PopulateGenre(library.run);
    EXPECT_THAT(library.run.GenreDictionary, IsEmpty());
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(PopulateGenreTest, GoesOnBehindARowThatCannotBeStored) {
    AddRow("One", "Null", "'000-Folk-000.rm'");
    AddRow("Two", "Null", "'000-Rock-000.rm'");
    library.Database().RefuseValue("Genre", "Folk");
    PopulateGenre(library.run);
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: PopulateGenre: Line 2 refused (ABOne)"));
    EXPECT_THAT(library.run.GenreDictionary,
                UnorderedElementsAre(Pair("ABOne", "Folk"), Pair("ABTwo", "Rock")));
    EXPECT_THAT(Genres(), ElementsAre("Null", "Rock"));
}

TEST_F(PopulateGenreTest, KeepsNoDictionaryThatNoComparisonOfTagsAsks) {
    library.run.settings.ID3Reconcile = false;
    AddRow("One", "'Folk'", "'x'");
    AddRow("Two", "Null", "'000-Rock-000.rm'");
    PopulateGenre(library.run);
    EXPECT_THAT(library.run.GenreDictionary, IsEmpty());
    EXPECT_THAT(Genres(), ElementsAre("Folk", "Rock"));
}

TEST_F(PopulateGenreTest, LogsATableThatCannotBeOpened) {
    library.Database().Refuse("Scan Spinner");
    PopulateGenre(library.run);
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: PopulateGenre: Line 0 refused"));
}

}  // namespace
}  // namespace quillon
