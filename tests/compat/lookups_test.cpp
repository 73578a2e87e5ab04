#include "compat/lookups.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SongGenreTest : public ::testing::Test {
  protected:
    support::TestLibrary library;
};
using ShownEntriesTest = SongGenreTest;

TEST_F(SongGenreTest, GenreIsThatOfTheFirstRowOfTheSong) {
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

TEST_F(SongGenreTest, LogsAFailureToFindAGenre) {
    library.Database().Refuse("Scan Spinner");
    EXPECT_EQ(GetID3Genre(library.run, "Alder", "First Light", "Dawn"), "");
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Get ID3 Genre Error: Line 1 refused (Alder\\First "
                            "Light\\Dawn)"));
}

TEST_F(ShownEntriesTest, IsShownAnEntryALineWithItsEightFields) {
    library.run.playlistEntries.Add({.ID = 7,
                                     .Track = 2,
                                     .Artist = "Ann",
                                     .CDJID = "A0",
                                     .Genre = "Rock, Pop",
                                     .Playlist = "Mine.pla",
                                     .Processed = 1,
                                     .Random = 99});
    library.run.playlistEntries.Add({.ID = 8});
    showORs(library.run, "before");
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: ORs before,7,2,Ann,A0,Rock, Pop,Mine.pla,1,99",
                            "Quillon: ORs before,8,0,,,,,0,0"));
}

TEST_F(ShownEntriesTest, ShowsNothingOfAnEmptySet) {
    showORs(library.run, "before");
    EXPECT_THAT(library.host.log, IsEmpty());
}

}  // namespace
}  // namespace quillon
