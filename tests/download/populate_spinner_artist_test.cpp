#include "download/populate_spinner_artist.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class PopulateSpinnerArtistTest : public ::testing::Test {
  protected:
    void Populate() { PopulateSpinnerArtist(library.run); }
    std::vector<std::string> Artists() {
        return library.Rows("SELECT Artist FROM SpinnerArtist ORDER BY Artist");
    }

    support::TestLibrary library;
};

TEST_F(PopulateSpinnerArtistTest, AddsARowWithAllTheValuesOfANewArtist) {
    library.AddAlbumRow("A1", "Ann", "First", 1);
    Populate();
    EXPECT_THAT(library.Rows("SELECT Artist, ArtistID, ShortBio, LongBio FROM SpinnerArtist"),
                ElementsAre("Ann|0||"));
    EXPECT_THAT(library.Rows(
                    "SELECT Count(*) FROM SpinnerArtist WHERE ShortBio Is Null OR LongBio Is Null"),
                ElementsAre("0"));
    EXPECT_EQ(library.window.last.aItem, "1. Add Artists to Download Table");
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(PopulateSpinnerArtistTest, AddsAnArtistOfSeveralAlbumsOnce) {
    library.AddAlbumRow("A1", "Ann", "First", 1);
    library.AddAlbumRow("A2", "ANN", "Second", 1);
    library.AddAlbumRow("C70A5B0F", "Bob", "Disc", 1, 2);
    Populate();
    EXPECT_EQ(Artists().size(), 2U);
}

TEST_F(PopulateSpinnerArtistTest, AddsNothingTheSecondTime) {
    for (const char* artist : {"Ann's", "Björk & Ünal", "#1 [live]", "100%", "", "a\\b", "--x"})
        library.AddAlbumRow(artist, artist, "First", 1);
    Populate();
    EXPECT_EQ(Artists().size(), 7U);
    Populate();
    EXPECT_EQ(Artists().size(), 7U);
    EXPECT_EQ(library.run.counts.artistsAdded, 7U);
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(PopulateSpinnerArtistTest, LeavesAnArtistThatIsKnownInAnotherLetterCase) {
    library.Execute("INSERT INTO SpinnerArtist (Artist, ShortBio) VALUES ('ANN', 'Sings.')");
    library.AddAlbumRow("A1", "Ann", "First", 1);
    Populate();
    EXPECT_THAT(library.Rows("SELECT Artist, ShortBio FROM SpinnerArtist"),
                ElementsAre("ANN|Sings."));
}

TEST_F(PopulateSpinnerArtistTest, PassesOverAlbumsWithoutAnArtist) {
    library.Execute("INSERT INTO Albums (CDJID, Title) VALUES ('A1', 'Nameless')");
    Populate();
    EXPECT_THAT(Artists(), IsEmpty());
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(PopulateSpinnerArtistTest, LogsANameWithADoubleQuoteAndAddsTheOthers) {
    library.AddAlbumRow("A1", "7\" Sisters", "First", 1);
    library.AddAlbumRow("A2", "Bob", "First", 1);
    Populate();
    EXPECT_THAT(Artists(), ElementsAre("Bob"));
    EXPECT_THAT(library.host.log,
                ElementsAre(StartsWith("Quillon: Populate Spinner Artist Error: Line 2 ")));
}

TEST_F(PopulateSpinnerArtistTest, LeavesNothingOfAnArtistThatIsRefused) {
    library.AddAlbumRow("A1", "Ann", "First", 1);
    library.AddAlbumRow("A2", "Bob", "First", 1);
    library.Database().RefuseValue("Artist", "Ann");
    Populate();
    EXPECT_THAT(Artists(), ElementsAre("Bob"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Populate Spinner Artist Error: Line 2 refused (Ann)"));
}

TEST_F(PopulateSpinnerArtistTest, LogsATableThatCannotBeOpened) {
    library.Database().Refuse("Scan SpinnerArtist");
    Populate();
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Populate Spinner Artist Error: Line 1 refused"));
    EXPECT_EQ(library.window.last.aError, "Populate Spinner Artist Error:");
}

}  // namespace
}  // namespace quillon
