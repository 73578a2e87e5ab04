#include <gmock/gmock.h>

#include "tests/reconcile/adding_fixture.h"

namespace quillon {
namespace {

class AddCountsTest : public AddingTest {};

TEST_F(AddCountsTest, TellAllThatCameIn) {
    AddNew("1.mp3", TagOf("One", "Artist", "First"));
    AddNew("2.mp3", TagOf("Two", "Artist", "First"));
    AddNew("3.mp3", TagOf("Three", "Other", "Second"));
    AddImage("front.jpg");
    Add();
    const RunCounts& counts = library.run.counts;
    EXPECT_EQ(counts.albumsAdded, 2U);
    EXPECT_EQ(counts.tracksAdded, 3U);
    EXPECT_EQ(counts.songsAdded, 3U);
    EXPECT_EQ(counts.artistsAdded, 2U);
    EXPECT_EQ(counts.imagesAdded, 2U);
    EXPECT_EQ(counts.filesCopied, 3U) << "covers count as such";
    library.run.counts = {};
    Add();
    EXPECT_EQ(counts.filesCopied + counts.songsAdded + counts.artistsAdded + counts.imagesAdded,
              0U);
}

TEST_F(AddCountsTest, TellNothingOfAFileThatWasTakenBack) {
    AddNew("1.mp3", TagOf("One", "Artist", "First"));
    AddImage("front.jpg");
    library.Database().Refuse("Insert Tracks");
    Add();
    const RunCounts& counts = library.run.counts;
    EXPECT_EQ(counts.errors, 1U);
    EXPECT_EQ(counts.filesCopied + counts.songsAdded + counts.artistsAdded + counts.imagesAdded,
              0U);
}

}  // namespace
}  // namespace quillon
