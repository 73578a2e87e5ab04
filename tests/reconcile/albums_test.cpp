#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/remove_duplicates.h"
#include "reconcile/album.h"
#include "reconcile/walk.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class ProcessOneAlbumTest : public ::testing::Test {
  protected:
    std::string Process(std::string_view artist, std::string_view title, std::int16_t count) {
        Walk walk(library.run);
        std::string cdjid = ProcessOneAlbum(walk, artist, title, count);
        walk.library.Save();
        return cdjid;
    }

    support::TestLibrary library;
};

TEST_F(ProcessOneAlbumTest, MakesARowWithAllTheValuesOfANewAlbum) {
    EXPECT_EQ(Process("Artist", "Title", 12), "252E671073EC0001");
    EXPECT_THAT(
        library.Rows("SELECT CDJID, Title, Artist, Player, LocationValid, [Position], FrameOffset, "
                     "Frames, [Group], DateAdded, DateReleased, DateLastPlayed, Tracks, Minutes, "
                     "Seconds, Rating1, Rating2, Rating3, Rating4, TimesPlayed, TimePlayed, "
                     "NeverPlay, ImageFile FROM Albums"),
        ElementsAre("252E671073EC0001|Title|Artist|1001|True|0|-1|0|-1|11/15/2026 5:38:55 AM|0|0|"
                    "12|-1|-1|0|0|0|0|0|0|False|Null"));
    EXPECT_EQ(library.run.counts.albumsAdded, 1U);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(ProcessOneAlbumTest, FindsAnOwnedAlbumAndWritesItsCount) {
    library.AddAlbumRow("252E671073EC0007", "Artist", "Title", 3);
    EXPECT_EQ(Process("Artist", "Title", 4), "252E671073EC0007");
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Title|4"));
}

TEST_F(ProcessOneAlbumTest, MatchesWithoutLetterCaseAndKeepsTheStoredNames) {
    library.AddAlbumRow("252E671073EC0007", "ARTIST", "Süßer Titel", 3);
    EXPECT_EQ(Process("artist", "SÜßER TITEL", 3), "252E671073EC0007");
    EXPECT_THAT(library.Albums(), ElementsAre("ARTIST|Süßer Titel|3"));
}

TEST_F(ProcessOneAlbumTest, DoesNotMatchAlbumsOfOtherPlayers) {
    library.AddAlbumRow("C70A5B0F", "Artist", "Title", 3, 1);
    EXPECT_EQ(Process("Artist", "Title", 4), "252E671073EC0001");
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Title|3", "Artist|Title|4"));
}

TEST_F(ProcessOneAlbumTest, TakesTheFirstOfSeveralRows) {
    library.AddAlbumRow("252E671073EC0001", "Artist", "Title", 0);
    library.AddAlbumRow("252E671073EC0002", "Artist", "Title", 0);
    EXPECT_EQ(Process("Artist", "Title", 4), "252E671073EC0001");
    EXPECT_THAT(library.Rows("SELECT Tracks FROM Albums ORDER BY ID"), ElementsAre("4", "0"));
}

TEST_F(ProcessOneAlbumTest, MakesNoRowForAnAlbumWithoutTracks) {
    EXPECT_EQ(Process("Artist", "Title", 0), "00000000");
    EXPECT_THAT(library.Albums(), IsEmpty());
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(ProcessOneAlbumTest, LogsANameWithADoubleQuote) {
    EXPECT_EQ(Process("Artist", "12\" Mixes", 2), "00000000");
    EXPECT_THAT(library.host.log, ElementsAre(StartsWith("Quillon: ProcessOneAlbum Line 2 ")));
    EXPECT_THAT(library.Albums(), IsEmpty());
}

TEST_F(ProcessOneAlbumTest, TakesAwkwardNamesAsTheyAre) {
    const std::vector<std::string> names{"Rock 'n' Roll", "100%",   "a_b",  "[live]", "#1",
                                         "Ångström",      "a & b;", "a\\b", "%",      "--x"};
    for (const std::string& name : names)
        Process(name, name, 1);
    for (const std::string& name : names)
        EXPECT_NE(Process(name, name, 1), "00000000") << name;
    EXPECT_EQ(library.Albums().size(), names.size());
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(ProcessOneAlbumTest, LogsATitleThatDoesNotFitAndGoesOnWithTheNextAlbum) {
    Walk walk(library.run);
    EXPECT_EQ(ProcessOneAlbum(walk, "Artist", std::string(256, 'x'), 1), "00000000");
    EXPECT_EQ(ProcessOneAlbum(walk, "Artist", "Title", 1), "252E671073EC0001");
    EXPECT_EQ(library.host.log.size(), 1U);
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Title|1"));
}

TEST_F(ProcessOneAlbumTest, MakesNoRowWithoutAnIdentifier) {
    Walk walk(library.run);
    for (int number = 0; number < 10000; ++number)
        walk.sequence.Taken(walk.sequence.GetNextCDJID());
    EXPECT_EQ(ProcessOneAlbum(walk, "Artist", "Title", 4), "00000000");
    EXPECT_THAT(library.Albums(), IsEmpty());
}

TEST_F(ProcessOneAlbumTest, DoesNotWriteACountThatIsStored) {
    library.AddAlbumRow("252E671073EC0007", "Artist", "Title", 3);
    EXPECT_EQ(Process("Artist", "Title", 3), "252E671073EC0007");
    EXPECT_EQ(library.Database().Count("Update Albums"), 0U);
    EXPECT_EQ(library.run.counts.albumsUnchanged, 1U);
    EXPECT_EQ(library.run.counts.albumsChanged, 0U);
}

}  // namespace
}  // namespace quillon
