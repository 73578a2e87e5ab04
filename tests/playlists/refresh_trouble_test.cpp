#include <gmock/gmock.h>

#include "playlists/refresh.h"
#include "tests/playlists/refresh_fixture.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST_F(RefreshTest, LeavesListsAloneWhereTheDatabaseCannotBeSaved) {
    std::int32_t number = 9;
    for (const char* const refused : {"Flush", "Update Tracks"}) {
        AddList("Mine.pla", {"A0 0", "C0 0"});
        const std::string before = List("Mine.pla");
        NextRun();
        CapturePlaylists(run());
        library.Database().Refuse(refused);
        run().TheLibrary().FindTrack(TrackId{1})->number.Set(--number);
        RefreshPlaylist(run());
        EXPECT_EQ(List("Mine.pla"), before) << refused;
        EXPECT_TRUE(library.files.FileExists(Snapshot)) << refused;
        EXPECT_THAT(library.host.log, Contains(HasSubstr("Refresh Playlist Error:")));
        library.Database().Allow(refused);
    }
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 6"));
    EXPECT_FALSE(library.files.FileExists(Snapshot));
}

TEST_F(RefreshTest, CostsNoMoreThanTheFileThatCannotBeWritten) {
    AddList("A.pla", {"A0 0", ""});
    AddList("B.pla", {"A0 0", ""});
    AddList("C.pla", {"A0 0", ""});
    CapturePlaylists(run());
    library.calls.Refuse(R"(CreateText D:\Lists\B.pla)", FailureNumber::PermissionDenied, "it");
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("A.pla"), SizeIs(1));
    EXPECT_THAT(Lines("B.pla"), SizeIs(2));
    EXPECT_THAT(Lines("C.pla"), SizeIs(1));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Refresh Playlist Error: Line 0 Permission denied: it "
                            R"((D:\Lists\B.pla))"));
}

/// What has not happened is not told.
TEST_F(RefreshTest, SaysNothingOfRepairsThatFailed) {
    AddList("Mine.pla", {"A0 0", "C0 0"});
    AddList("Gone.pla", {"C0 0"});
    CapturePlaylists(run());
    library.calls.Refuse(R"(CreateText D:\Lists\Mine.pla)", FailureNumber::DiskFull, "x");
    library.calls.Refuse(R"(DeleteFile D:\Lists\Gone.pla)", FailureNumber::PermissionDenied, "x");
    RefreshPlaylist(run());
    EXPECT_THAT(library.host.log, Each(HasSubstr("Refresh Playlist Error")));
    EXPECT_THAT(library.host.log, SizeIs(2));
    EXPECT_THAT(run().removals.Of(Removable::Playlists).names, IsEmpty());
}

/// Nothing is known of the songs that it names, so taking its entries for lost would lose them.
TEST_F(RefreshTest, LeavesAFileAloneThatCouldNotBeCaptured) {
    AddList("Bad.pla", {"A0 0"});
    AddList("Good.pla", {"A0 2"});
    library.calls.Refuse(R"(OpenBinary D:\Lists\Bad.pla)", FailureNumber::PermissionDenied, "Bad");
    CapturePlaylists(run());
    TurnRound();
    RefreshPlaylist(run());
    EXPECT_TRUE(ListExists("Bad.pla"));
    EXPECT_THAT(Lines("Good.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(library.host.log, SizeIs(2)) << "one for the file, one for the repair";
}

TEST_F(RefreshTest, LeavesAllFilesAloneWhenNothingCouldBeCaptured) {
    AddList("Mine.pla", {"A0 0", "nonsense"});
    library.calls.Refuse(R"(FilesIn D:\Lists)", FailureNumber::PathNotFound, "Lists");
    CapturePlaylists(run());
    library.calls = {};
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), SizeIs(2));
}

TEST_F(RefreshTest, LeavesAFileAloneThatCannotBeReadAgain) {
    AddList("Bad.pla", {"A0 0"});
    AddList("Good.pla", {"A0 2"});
    CapturePlaylists(run());
    TurnRound();
    library.calls.Refuse(R"(OpenBinary D:\Lists\Bad.pla)", FailureNumber::PathFileAccess, "Bad");
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(Lines("Good.pla"), ElementsAre("A0 0"));
    library.calls = {};
    NextRun();
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 2")) << "the next run knows what it meant";
}

}  // namespace
}  // namespace quillon
