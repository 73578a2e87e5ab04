#include "database/remove_duplicates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* AlbumRows = "SELECT CDJID, Player, Tracks FROM Albums ORDER BY ID";
constexpr const char* TrackRows = "SELECT CDJID, Track FROM Tracks ORDER BY ID";

class RemoveDuplicatesTest : public ::testing::Test {
  protected:
    support::TestLibrary library;
};

TEST_F(RemoveDuplicatesTest, LeavesEverythingElseAsItIs) {
    library.AddAlbumRow("252E671073EC0001", "A", "One", 2);
    library.AddTrackRow("252E671073EC0001", 1, R"(D:\1.mp3)");
    library.AddTrackRow("252E671073EC0001", 2, R"(D:\2.mp3)");
    library.AddAlbumRow("C70A5B0F", "B", "Two", 7, 1);
    library.AddTrackRow("C70A5B0F", 7, "");
    library.AddTrackRow("unknown", 3, R"(D:\3.mp3)");

    RemoveDuplicates(library.run);

    EXPECT_THAT(library.Rows(AlbumRows), ElementsAre("252E671073EC0001|1001|2", "C70A5B0F|1|7"));
    EXPECT_THAT(library.Rows(TrackRows),
                ElementsAre("252E671073EC0001|1", "252E671073EC0001|2", "C70A5B0F|7", "unknown|3"));
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(RemoveDuplicatesTest, DeletesAllRowsOfADuplicatedIdentifierWhateverTheirPlayer) {
    library.AddAlbumRow("DUPLICATE0001", "A", "One", 1);
    library.AddAlbumRow("DUPLICATE0001", "B", "Two", 1, 2);
    library.AddAlbumRow("C70A5B0F", "C", "Three", 1, 1);
    library.AddTrackRow("DUPLICATE0001", 1, R"(D:\1.mp3)");
    library.AddTrackRow("DUPLICATE0001", 1, R"(D:\2.mp3)");
    library.AddTrackRow("C70A5B0F", 1, R"(D:\3.mp3)");

    RemoveDuplicates(library.run);

    EXPECT_THAT(library.Rows(AlbumRows), ElementsAre("C70A5B0F|1|1"));
    EXPECT_THAT(library.Rows(TrackRows), ElementsAre("C70A5B0F|1"));
    EXPECT_EQ(library.run.counts.albumsRemoved, 2U);
    EXPECT_EQ(library.run.counts.tracksRemoved, 2U);
}

TEST_F(RemoveDuplicatesTest, DeletesSeveralDuplicatedIdentifiersInTheOrderOfTheDatabase) {
    for (const char* cdjid : {"DUPLICATE2", "duplicate1", "DUPLICATE3"}) {
        library.AddAlbumRow(cdjid, "A", "One", 1);
        library.AddAlbumRow(cdjid, "A", "Two", 1);
    }
    RemoveDuplicates(library.run);
    EXPECT_THAT(library.Rows(AlbumRows), IsEmpty());
    ASSERT_EQ(library.host.log.size(), 6U);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_THAT(library.host.log[2 * i], HasSubstr(std::to_string(i + 1) + " with another"));
}

TEST_F(RemoveDuplicatesTest, DeletesOwnedTracksWithoutASoundFile) {
    library.AddAlbumRow("252E671073EC0001", "A", "One", 3);
    library.AddAlbumRow("C70A5B0F", "B", "Two", 1, 1);
    library.AddTrackRow("252E671073EC0001", 1, "");
    library.Execute("INSERT INTO Tracks (CDJID, Track) VALUES ('252E671073EC0001', 2)");
    library.AddTrackRow("252E671073EC0001", 3, R"(D:\3.mp3)");
    library.AddTrackRow("C70A5B0F", 1, "");

    RemoveDuplicates(library.run);

    EXPECT_THAT(library.Rows("SELECT CDJID, SoundFile FROM Tracks ORDER BY ID"),
                ElementsAre(R"(252E671073EC0001|D:\3.mp3)", "C70A5B0F|"));
    EXPECT_EQ(library.run.counts.tracksRemoved, 2U);
}

TEST_F(RemoveDuplicatesTest, LogsEachFailingStepAndGoesOn) {
    library.AddAlbumRow("DUPLICATE1", "A", "One", 1);
    library.AddAlbumRow("DUPLICATE1", "A", "Two", 1);
    library.AddAlbumRow("252E671073EC0001", "B", "One", 1);
    library.AddTrackRow("252E671073EC0001", 1, "");
    library.Database().Refuse("Delete ");

    RemoveDuplicates(library.run);

    EXPECT_THAT(
        library.host.log,
        ElementsAre("Quillon: Remove Duplicates Error on Delete Duplicate Query: Line 2 refused",
                    "Quillon: Remove Duplicates Error on SoundFile=Null Query: Line 4 refused"));
    EXPECT_EQ(library.run.counts.albumsRemoved + library.run.counts.tracksRemoved, 0U);
}

TEST_F(RemoveDuplicatesTest, RemovesNothingWhereTheTablesCannotBeRead) {
    library.AddAlbumRow("252E671073EC0001", "A", "One", 1);
    library.AddTrackRow("252E671073EC0001", 1, "");
    library.Database().Refuse("Scan Tracks");
    RemoveDuplicates(library.run);
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: Remove Duplicates Error: Line 0 refused"));
    EXPECT_THAT(library.Rows(TrackRows), ElementsAre("252E671073EC0001|1"));
}

TEST_F(RemoveDuplicatesTest, EndsWhenADuplicatedIdentifierCannotBeDeleted) {
    library.AddAlbumRow("a\"b", "A", "One", 1);
    library.AddAlbumRow("a\"b", "A", "Two", 1);
    RemoveDuplicates(library.run);
    EXPECT_THAT(library.host.log,
                ElementsAre(StartsWith(
                    "Quillon: Remove Duplicates Error on Delete Duplicate Query: Line 2 ")));
    EXPECT_THAT(library.Rows(AlbumRows), ElementsAre("a\"b|1001|1", "a\"b|1001|1"));
}

}  // namespace
}  // namespace quillon
