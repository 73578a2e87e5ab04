// Playlists that would be deleted in numbers, or in a run that removes nothing.

#include <gmock/gmock.h>

#include "tests/playlists/playlist_fixture.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class PlaylistBrake : public PlaylistTest {
  protected:
    PlaylistBrake() {
        run().settings.GenrePlaylist = false;
        run().settings.ArtistPlaylist = false;
        AddList("Mine.pla", {"A0 0", "A0 2"});
    }

    /// Lists whose only album is not there.
    void AddLostLists(int count) {
        for (int i = 0; i < count; ++i)
            AddList("Lost" + std::to_string(i) + ".pla", {"C0 0"});
    }

    void CaptureTurnRoundAndRefresh() {
        CapturePlaylists(run());
        Renumber("One", 3);
        Renumber("Three", 1);
        RefreshPlaylist(run());
    }

    int LostLists() {
        int count = 0;
        for (const FileEntry& file : library.files.FilesIn(R"(D:\Lists)"))
            count += file.name.starts_with("Lost") ? 1 : 0;
        return count;
    }
};

TEST_F(PlaylistBrake, LetsAsManyGoAsTheSettingSays) {
    AddLostLists(5);
    CaptureTurnRoundAndRefresh();
    EXPECT_EQ(LostLists(), 0);
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 2", "A0 0"));
    EXPECT_EQ(run().removals.Of(Removable::Playlists).count, 5U);
}

TEST_F(PlaylistBrake, KeepsAllAndRepairsNothingWhereItWouldBeMore) {
    AddLostLists(6);
    CaptureTurnRoundAndRefresh();
    EXPECT_EQ(LostLists(), 6);
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0", "A0 2"));
    EXPECT_THAT(library.host.log,
                ElementsAre(AllOf(HasSubstr("Nothing is removed: 6 playlists would go, beyond "
                                            "MaxRemovedPlaylists=5"),
                                  HasSubstr(R"(D:\Lists\Lost0.pla)"))));
    EXPECT_TRUE(library.files.FileExists(Snapshot));
}

TEST_F(PlaylistBrake, KeepsWhatTheListsMeantForARunThatMay) {
    AddLostLists(6);
    CaptureTurnRoundAndRefresh();
    NextRun();
    run().removals = {};
    run().removals.allAllowed = true;
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_EQ(LostLists(), 0);
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 2", "A0 0"));
    EXPECT_FALSE(library.files.FileExists(Snapshot));
}

TEST_F(PlaylistBrake, RepairsNothingWhereTheRunHasBeenBrakedBefore) {
    AddLostLists(1);
    run().removals.Allow(run(), {.kind = Removable::Tracks, .names = {"x"}, .doubt = "as a test"});
    library.host.log.clear();
    library.calls.Forget();
    CaptureTurnRoundAndRefresh();
    EXPECT_EQ(LostLists(), 1);
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0", "A0 2"));
    EXPECT_THAT(library.calls.Of({R"(CreateText D:\Lists)", "DeleteFile"}), IsEmpty());
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_TRUE(library.files.FileExists(Snapshot));
}

/// Those that are left alone are no loss.
TEST_F(PlaylistBrake, DoesNotCountListsThatOthersHaveChanged) {
    AddLostLists(6);
    CapturePlaylists(run());
    AddList("Lost0.pla", {"C0 1"});
    RefreshPlaylist(run());
    EXPECT_EQ(LostLists(), 1);
}

TEST_F(PlaylistBrake, CountsEachListOnceHoweverManyEntriesItHas) {
    AddList("Lost.pla", std::vector<std::string>(100, "C0 0"));
    CaptureTurnRoundAndRefresh();
    EXPECT_FALSE(ListExists("Lost.pla"));
    EXPECT_THAT(run().removals.Of(Removable::Playlists).names, SizeIs(1));
}

}  // namespace
}  // namespace quillon
