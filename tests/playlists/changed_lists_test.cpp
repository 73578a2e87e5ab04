// Playlists that other programs write while a run is at work, between the capture and the refresh
// or in the very moment of a repair.

#include <gmock/gmock.h>

#include "tests/playlists/playlist_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ChangedLists : public PlaylistTest {
  protected:
    ChangedLists() {
        run().settings.GenrePlaylist = false;
        run().settings.ArtistPlaylist = false;
        AddList("Mine.pla", {"A0 0", "A0 2"});
    }

    /// The songs of album A0 get other numbers.
    void TurnRound() {
        Renumber("One", 3);
        Renumber("Three", 1);
    }

    /// Another program writes a list in the moment that the run shows this item.
    void WriteWhen(const std::string& item, const std::string& name,
                   const std::vector<std::string>& lines) {
        library.window.onEvents = [this, item, name, lines](const FormState& state) {
            if (state.aItem == item) AddList(name, lines);
        };
    }

    bool SnapshotExists() { return library.files.FileExists(Snapshot); }
};

constexpr const char* LeftAsItIs =
    "Quillon: Playlist Mine.pla was changed by another program during this run, and is left as it "
    "is";

TEST_F(ChangedLists, StayAsTheyAre) {
    CapturePlaylists(run());
    AddList("Mine.pla", {"B0 0", "B0 1", "nonsense", "C0 0", ""});
    const std::string saved = List("Mine.pla");
    TurnRound();
    RefreshPlaylist(run());
    EXPECT_EQ(List("Mine.pla"), saved);
    EXPECT_THAT(library.host.log, ElementsAre(LeftAsItIs));
    EXPECT_EQ(run().counts.errors, 0U);
    EXPECT_FALSE(SnapshotExists());
}

/// The old entries may have been written by the old numbers: a person has to look.
TEST_F(ChangedLists, AreErrorsWhereTheyHoldEntriesThatNamedOtherSongsBefore) {
    CapturePlaylists(run());
    AddList("Mine.pla", {"A0 0", "A0 2", "B0 1"});
    const std::string saved = List("Mine.pla");
    TurnRound();
    RefreshPlaylist(run());
    EXPECT_EQ(List("Mine.pla"), saved);
    EXPECT_THAT(library.host.log, ElementsAre(std::string(LeftAsItIs) +
                                              "; entries that named other songs before: A0 0, A0 "
                                              "2. Choose them again where they are wrong"));
    EXPECT_EQ(run().counts.errors, 1U);
}

TEST_F(ChangedLists, AreNoErrorsWhereTheirEntriesNameTheSongsThatTheyNamed) {
    CapturePlaylists(run());
    AddList("Mine.pla", {"A0 2", "A0 0", "B0 1"});
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 2", "A0 0", "B0 1"));
    EXPECT_THAT(library.host.log, ElementsAre(LeftAsItIs));
    EXPECT_EQ(run().counts.errors, 0U);
}

/// The content counts, not name, size or time.
TEST_F(ChangedLists, AreKnownByTheirContent) {
    CapturePlaylists(run());
    AddList("Mine.pla", {"A0 2", "A0 0"});
    RefreshPlaylist(run());
    EXPECT_THAT(library.host.log, ElementsAre(LeftAsItIs)) << "of the same size and time";

    NextRun();
    CapturePlaylists(run());
    TurnRound();
    library.files.AddFile(R"(D:\Lists\Mine.pla)", List("Mine.pla"), MakeDateTime(2030, 1, 1));
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0", "A0 2")) << "saved as it was";
}

TEST_F(ChangedLists, StayWhereTheyAreNew) {
    CapturePlaylists(run());
    AddList("New.pla", {"A0 0", "C0 0", "nonsense"});
    const std::string saved = List("New.pla");
    RefreshPlaylist(run());
    EXPECT_EQ(List("New.pla"), saved);
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: Playlist New.pla is new since this run "
                                              "began, and is left as it is"));
}

TEST_F(ChangedLists, AreNoListsWhereTheyAreNewAndOnlyLookAlike) {
    CapturePlaylists(run());
    library.files.AddFile(R"(D:\Lists\notes.txt)", "CDJ Playlist V1.1\r\nnonsense\r\n");
    RefreshPlaylist(run());
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(ChangedLists, AreNotMadeAnewWhereTheyWereDeleted) {
    CapturePlaylists(run());
    library.files.DeleteFile(R"(D:\Lists\Mine.pla)");
    TurnRound();
    RefreshPlaylist(run());
    EXPECT_FALSE(ListExists("Mine.pla"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

/// All lists have been looked at by then.
TEST_F(ChangedLists, StayWhenTheyAreSavedJustBeforeTheirRepair) {
    AddList("Zzz.pla", {"A0 0"});
    CapturePlaylists(run());
    TurnRound();
    WriteWhen("1. Update Existing Playlists - Zzz.pla", "Mine.pla", {"B0 2"});
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("B0 2"));
    EXPECT_THAT(Lines("Zzz.pla"), ElementsAre("A0 2"));
    EXPECT_EQ(library.host.log.front(), LeftAsItIs);
}

/// Files that change while they are written: what was read is compared in the last moment.
class SavedInTheLastMoment : public ChangedLists {
  protected:
    /// Another program writes the list when it is read for the nth time from now on.
    void WriteBeforeRead(int n) {
        library.files.beforeOpenBinary = [this, n](std::string_view path) mutable {
            if (path == R"(D:\Lists\Mine.pla)" && --n == 0) AddList("Mine.pla", {"B0 2"});
        };
    }
};

TEST_F(SavedInTheLastMoment, AreNotReplaced) {
    CapturePlaylists(run());
    TurnRound();
    WriteBeforeRead(3);
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("B0 2"));
    EXPECT_THAT(library.calls.Of({"CreateText"}), SizeIs(2)) << "the snapshot, and the repair";
    EXPECT_THAT(library.host.log, SizeIs(1)) << "no repair is told";
    EXPECT_EQ(run().counts.playlistsRewritten, 0U);
}

TEST_F(SavedInTheLastMoment, AreNotDeleted) {
    CapturePlaylists(run());
    library.Execute("DELETE * FROM Tracks WHERE CDJID='A0'");
    WriteBeforeRead(3);
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("B0 2"));
    EXPECT_THAT(run().removals.Of(Removable::Playlists).names, IsEmpty());
}

TEST_F(SavedInTheLastMoment, AreKnownWhenReadForTheRepair) {
    CapturePlaylists(run());
    TurnRound();
    WriteBeforeRead(2);
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("B0 2"));
}

}  // namespace
}  // namespace quillon
