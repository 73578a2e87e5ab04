#include <gmock/gmock.h>

#include "tests/playlists/create_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;

TEST_F(CreateTest, TakesTracksOfOthersWithTheAlbumsTheyAreOn) {
    library.AddAlbumRow("L0", "Cee", "Guests", 2);
    AddLongAlbum("Cee", "Genre", 1);
    library.AddTrackRow("L0", 2, R"(D:\Music\Cee\Guests\2.mp3)", "Two");
    library.Execute("UPDATE Tracks SET Artist='Guest' WHERE Title='Two'");
    Create();
    EXPECT_THAT(Lines("Genre.pla"), ElementsAre("L0 0"));
    run().modern.keepsTrackArtists = true;
    Create();
    EXPECT_THAT(Lines("Genre.pla"), ElementsAre("L0 0", "L0 1"));
    EXPECT_THAT(Lines("Cee.pla"), ElementsAre("L0 0"));
    EXPECT_THAT(Lines("Guest.pla"), ElementsAre("L0 1"));
}

}  // namespace
}  // namespace quillon
