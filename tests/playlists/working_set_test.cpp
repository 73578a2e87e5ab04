#include "playlists/working_set.h"

#include <gmock/gmock.h>

#include "tests/playlists/playlist_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

TEST_F(WorkingSetTest, IsShownAnEntryALineWithItsEightFields) {
    Entries().Add({.ID = 7,
                   .Track = 2,
                   .Artist = "Ann",
                   .CDJID = "A0",
                   .Genre = "Rock, Pop",
                   .Playlist = "Mine.pla",
                   .Processed = 1,
                   .Random = 99});
    Entries().Add({.ID = 8});
    showORs(run(), "before");
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: ORs before,7,2,Ann,A0,Rock, Pop,Mine.pla,1,99",
                            "Quillon: ORs before,8,0,,,,,0,0"));
}

TEST_F(WorkingSetTest, ShowsNothingOfAnEmptySet) {
    showORs(run(), "before");
    EXPECT_THAT(library.host.log, IsEmpty());
}

}  // namespace
}  // namespace quillon
