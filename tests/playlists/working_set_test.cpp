#include "tests/playlists/playlist_fixture.h"

namespace quillon {
namespace {

using WorkingSetTest = PlaylistTest;

TEST_F(WorkingSetTest, IsMadeAnewAndEmpty) {
    Entries().Add({.ID = 1, .Playlist = "Mine.pla"});
    Entries().NoteUnread("Other.pla");
    Entries().NoteNothingRead();
    BuildORsRecordset(run());
    EXPECT_EQ(Entries().Count(), 0U);
    EXPECT_FALSE(Entries().FindSong(1, "Mine.pla"));
    EXPECT_FALSE(Entries().IsUnread("Other.pla"));
    EXPECT_FALSE(Entries().NothingRead());
}

}  // namespace
}  // namespace quillon
