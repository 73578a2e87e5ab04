// Playlists that are there and cannot be read while the library is renumbered. Whenever they can be
// read again, they mean the songs of then.

#include <gmock/gmock.h>

#include "playlists/create.h"
#include "tests/playlists/playlist_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class UnreadLists : public PlaylistTest {
  protected:
    UnreadLists() {
        run().settings.GenrePlaylist = false;
        run().settings.ArtistPlaylist = false;
        AddList("Bad.pla", {"A0 0", "A0 2"});
        AddList("Good.pla", {"A0 0", "A0 2"});
    }

    void WholeRun() {
        CapturePlaylists(run());
        RefreshPlaylist(run());
    }

    /// A run in which the songs of an album get another order.
    void RenumberingRun() {
        CapturePlaylists(run());
        Renumber("One", 2);
        Renumber("Two", 3);
        Renumber("Three", 1);
        RefreshPlaylist(run());
    }

    void RefuseBad() {
        library.calls.Refuse(R"(OpenBinary D:\Lists\Bad.pla)", FailureNumber::PathFileAccess, "x");
    }

    bool SnapshotExists() { return library.files.FileExists(Snapshot); }
};

TEST_F(UnreadLists, AreRepairedByTheNextRunThatCanReadThem) {
    RefuseBad();
    RenumberingRun();
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 0", "A0 2"));
    EXPECT_THAT(Lines("Good.pla"), ElementsAre("A0 1", "A0 0"));
    EXPECT_THAT(library.host.log[0], HasSubstr("Capture Playlists Error: Line 5 Path/File access"));
    EXPECT_TRUE(SnapshotExists());

    NextRun();
    WholeRun();
    EXPECT_THAT(library.host.log, SizeIs(1)) << "still not to be read";
    Renumber("Three", 9);
    NextRun();
    library.calls = {};
    WholeRun();
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 1", "A0 8"));
    EXPECT_FALSE(SnapshotExists());
}

TEST_F(UnreadLists, CanBeOnesThatNobodyCanLookAt) {
    library.files.HideFromView(R"(D:\Lists\Bad.pla)");
    RenumberingRun();
    EXPECT_TRUE(Entries().IsUnread("Bad.pla"));
    EXPECT_TRUE(SnapshotExists());
    NextRun();
    library.files.ShowAll();
    WholeRun();
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 1", "A0 0"));
}

TEST_F(UnreadLists, CanBeAllThatTheFolderHolds) {
    library.files.unlistable.insert(R"(D:\Lists)");
    RenumberingRun();
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: Capture Playlists Error: Line 3 Permission denied: )"
                            R"(D:\Lists)"));
    NextRun();
    library.files.unlistable.clear();
    WholeRun();
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 1", "A0 0"));
    EXPECT_THAT(Lines("Good.pla"), ElementsAre("A0 1", "A0 0"));
    EXPECT_FALSE(SnapshotExists());
}

/// As where the drive is away that holds them.
TEST_F(UnreadLists, CanBeAllThatTheDatabaseKnowsOfAFolderThatHoldsNone) {
    library.Execute(R"(INSERT INTO Playlists (FilePath, Filename, Type, AutoGenre)
                       VALUES ('D:\Lists\', 'Bad', '.pla', False))");
    const std::string bad = List("Bad.pla");
    library.files.DeleteFile(R"(D:\Lists\Bad.pla)");
    library.files.DeleteFile(R"(D:\Lists\Good.pla)");
    RenumberingRun();
    EXPECT_THAT(
        library.host.log,
        ElementsAre(HasSubstr("Nothing is removed: 1 playlist would go, and no playlist at all was "
                              R"(found in D:\Lists\. It would be D:\Lists\Bad.pla.)")));
    run().settings.GenrePlaylist = true;
    CreateNewPlaylists(run());
    EXPECT_THAT(library.files.FilesIn(R"(D:\Lists)").entries, IsEmpty());

    NextRun();
    run().removals = {};
    run().settings.GenrePlaylist = false;
    library.files.AddFile(R"(D:\Lists\Bad.pla)", bad);
    WholeRun();
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 1", "A0 0"));
    EXPECT_FALSE(SnapshotExists());
}

TEST_F(UnreadLists, AreNoneInAFolderThatMayBeEmpty) {
    library.Execute(R"(INSERT INTO Playlists (FilePath, Filename, Type, AutoGenre)
                       VALUES ('D:\Lists\', 'Bad', '.pla', False))");
    library.files.DeleteFile(R"(D:\Lists\Bad.pla)");
    library.files.DeleteFile(R"(D:\Lists\Good.pla)");
    run().removals.allAllowed = true;
    WholeRun();
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_FALSE(SnapshotExists());
}

/// Without what earlier lists meant, a run would go by the numbers that it has changed itself.
TEST_F(UnreadLists, KeepTheRunFromChangingAnythingWhereWhatTheyMeanCannotBeKept) {
    library.calls.Refuse("CreateText " + std::string(Snapshot), FailureNumber::DiskFull, Snapshot);
    CapturePlaylists(run());
    EXPECT_FALSE(run().isSecured);
    EXPECT_THAT(library.host.log, ElementsAre(HasSubstr("Capture Playlists Error: Line 6 Disk")));
}

TEST_F(UnreadLists, MeanWhatAnEarlierRunHadCapturedOfThem) {
    CapturePlaylists(run());
    Renumber("One", 2);
    Renumber("Two", 1);
    NextRun();
    RefuseBad();
    RenumberingRun();
    NextRun();
    library.calls = {};
    WholeRun();
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 1", "A0 0"));
}

TEST_F(UnreadLists, FollowASongWhoseFileWentAsADuplicate) {
    RefuseBad();
    CapturePlaylists(run());
    Entries().SongBecame(1, 2);
    Entries().Keep();
    library.Execute("DELETE * FROM Tracks WHERE ID=1");
    RefreshPlaylist(run());
    NextRun();
    library.calls = {};
    WholeRun();
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 1", "A0 2"));
}

TEST_F(UnreadLists, AreToldWhenTheirFolderGoesAwayDuringTheRun) {
    CapturePlaylists(run());
    run().settings.PlayListPath = R"(D:\Away\)";
    RefreshPlaylist(run());
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: Refresh Playlist Error: Line 0 Path not found: D:\Away\)"));
    EXPECT_TRUE(SnapshotExists());
}

TEST_F(UnreadLists, MeanTheSongsOfTheirOwnTime) {
    RefuseBad();
    RenumberingRun();
    const std::string good = List("Good.pla");
    NextRun();
    library.calls.Refuse(R"(OpenBinary D:\Lists\Good.pla)", FailureNumber::PathFileAccess, "x");
    CapturePlaylists(run());
    Renumber("Three", 8);
    RefreshPlaylist(run());
    EXPECT_EQ(List("Good.pla"), good);
    NextRun();
    library.calls = {};
    WholeRun();
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 1", "A0 7"));
    EXPECT_THAT(Lines("Good.pla"), ElementsAre("A0 1", "A0 7"));
    EXPECT_FALSE(SnapshotExists());
}

/// Whoever saved it since meant the songs as they are numbered now.
TEST_F(UnreadLists, MeanWhatTheySayWhenTheyWereSavedSince) {
    RefuseBad();
    RenumberingRun();
    NextRun();
    library.calls = {};
    library.files.AddFile(R"(D:\Lists\Bad.pla)", List("Bad.pla"), MakeDateTime(2026, 11, 16));
    WholeRun();
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 0", "A0 2"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(UnreadLists, LoseNoEntryToAReplacedDatabase) {
    RefuseBad();
    RenumberingRun();
    NextRun();
    library.calls = {};
    library.Execute(R"(UPDATE Tracks SET SoundFile='E:\else\' & Title)");
    WholeRun();
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 0", "A0 2"));
}

TEST_F(UnreadLists, AreLeftAloneWhereTheyCanBeReadInTheMeantime) {
    RefuseBad();
    CapturePlaylists(run());
    Renumber("One", 7);
    library.calls = {};
    library.host.log.clear();
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Bad.pla"), ElementsAre("A0 0", "A0 2"));
    EXPECT_TRUE(SnapshotExists());
}

}  // namespace
}  // namespace quillon
