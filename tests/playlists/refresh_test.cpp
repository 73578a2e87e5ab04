#include "playlists/refresh.h"

#include <gmock/gmock.h>

#include "tests/playlists/refresh_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST_F(RefreshTest, LetsEntriesFollowTheirSongs) {
    AddList("Mine.pla", {"A0 0", "A0 1", "A0 2"});
    CapturePlaylists(run());
    TurnRound();
    RefreshPlaylist(run());
    EXPECT_EQ(List("Mine.pla"), "CDJ Playlist V1.1\r\nA0 2\r\nA0 1\r\nA0 0\r\n");
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Playlist Mine.pla, Track # updated from 0 to A0 2",
                            "Quillon: Playlist Mine.pla, Track # updated from 2 to A0 0"));
    EXPECT_EQ(run().counts.playlistsRewritten, 1U);
}

TEST_F(RefreshTest, ChangesNothingASecondTime) {
    AddList("Mine.pla", {"A0 0", "A0 2"});
    CapturePlaylists(run());
    TurnRound();
    RefreshPlaylist(run());
    const std::string repaired = List("Mine.pla");
    NextRun();
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_EQ(List("Mine.pla"), repaired);
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(RefreshTest, KeepsEveryByteOfAFileThatIsRight) {
    const std::string text = "any\xE4 header\nA0 0\r\na0 01 with more\nB0 -1\nA0 2";
    library.files.AddFile(R"(D:\Lists\Mine.pla)", text);
    CapturePlaylists(run());
    library.calls.Forget();
    RefreshPlaylist(run());
    EXPECT_EQ(List("Mine.pla"), text);
    EXPECT_THAT(library.calls.Of({R"(CreateText D:\Lists)"}), IsEmpty());
    EXPECT_EQ(run().counts.playlistsRewritten, 0U);
}

TEST_F(RefreshTest, KeepsTheHeaderOfAFileThatChanges) {
    library.files.AddFile(R"(D:\Lists\Mine.pla)", "my own header\nA0 0\n\n");
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_EQ(List("Mine.pla"), "my own header\r\nA0 0\r\n");
}

TEST_F(RefreshTest, DropsBlankLinesWithoutAWord) {
    AddList("Mine.pla", {"A0 0", "", "   ", "A0 1"});
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0", "A0 1"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(RefreshTest, DropsALineWithoutASecondField) {
    AddList("Mine.pla", {" nonsense ", "A0 0"});
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: Playlist Mine.pla,  nonsense  removed "
                                              "because of incorrect syntax"));
}

TEST_F(RefreshTest, DeletesAPlaylistWhoseAlbumsAreAllGone) {
    AddList("Mine.pla", {"C0 0", "C0 -1"});
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_FALSE(ListExists("Mine.pla"));
    EXPECT_THAT(
        library.host.log,
        ElementsAre("Quillon: Playlist Mine.pla, C0 0 removed because CDJID no longer exists",
                    "Quillon: Playlist Mine.pla, C0 -1 removed because CDJID no longer exists",
                    "Quillon: Playlist Mine.pla delete because no valid entries remain"));
    EXPECT_EQ(run().counts.playlistsRemoved, 1U);
}

TEST_F(RefreshTest, LeavesAFileOfAnotherProgramThatHasTheNameOfAPlaylist) {
    const std::string foreign("iRec\0\x01\n\xFF\0songs\nand more\r\n", 25);
    library.files.AddFile(R"(D:\Lists\Player.pla)", foreign);
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_EQ(library.files.Content(R"(D:\Lists\Player.pla)"), foreign);
    EXPECT_THAT(
        library.host.log,
        ElementsAre("Quillon: Playlist Player.pla is left as it is, since it is no text; it "
                    "seems to be another program's"));
    EXPECT_EQ(run().counts.playlistsRemoved, 0U);
}

TEST_F(RefreshTest, DeletesAPlaylistWithoutTheHeaderWhoseAlbumsAreAllGone) {
    library.files.AddFile(R"(D:\Lists\Mine.pla)", "My songs\r\nC0 0\r\n");
    library.files.AddFile(R"(D:\Lists\Notes.pla)", "My songs\r\nnothing but words\r\n");
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_FALSE(ListExists("Mine.pla"));
    EXPECT_FALSE(ListExists("Notes.pla"));
}

TEST_F(RefreshTest, LeavesAPlaylistThatNeverHadEntries) {
    AddList("Header.pla", {});
    library.files.AddFile(R"(D:\Lists\Empty.pla)", "");
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_TRUE(ListExists("Header.pla"));
    EXPECT_TRUE(ListExists("Empty.pla"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(RefreshTest, KeepsWholeAlbumsAsTheyStandEvenTwice) {
    AddList("Mine.pla", {"A0 -1", "A0 -1", " B0 -1 x", ""});
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 -1", "A0 -1", " B0 -1 x"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(RefreshTest, KeepsTheFirstPlaceOfASongThatIsThereTwice) {
    AddList("Mine.pla", {"A0 0", "A0 1", "a0 00", "A0 0"});
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0", "A0 1"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Playlist Mine.pla contains duplicate track 00 on a0 and was "
                            "removed",
                            "Quillon: Playlist Mine.pla contains duplicate track 0 on A0 and was "
                            "removed"));
}

TEST_F(RefreshTest, DropsASongThatIsGone) {
    AddList("Mine.pla", {"A0 0", "A0 1"});
    CapturePlaylists(run());
    library.Execute("DELETE * FROM Tracks WHERE Title='One'");
    Renumber("Two", 1);
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(
        library.host.log,
        ElementsAre("Quillon: Playlist Mine.pla, A0 0 removed because Track ID no longer exists",
                    "Quillon: Playlist Mine.pla, Track # updated from 1 to A0 0"));
}

TEST_F(RefreshTest, DropsAnEntryThatNamedNoSongWhenItWasCaptured) {
    AddList("Mine.pla", {"A0 0", "A0 3"});
    CapturePlaylists(run());
    library.AddTrackRow("A0", 4, TestFile("A0", "New"), "New");
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Playlist Mine.pla record could not be retrieved from temp "
                            "database for CDJID A0, Track 3"));
}

TEST_F(RefreshTest, DropsPositionsThatAreNoneWithALineEach) {
    AddList("Mine.pla", {"A0 0", "A0 x", "A0  1", "A0 -2", "A0 70000", "A0 1.5", " A0 1"});
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(library.host.log, SizeIs(6));
}

TEST_F(RefreshTest, TreatsApostrophesAsText) {
    AddAlbum("C'0", "Cee", {"Seven", "Eight"});
    AddList("Rock'n'Roll.pla", {"C'0 0", "C'0' 0"});
    CapturePlaylists(run());
    Renumber("Seven", 2);
    Renumber("Eight", 1);
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Rock'n'Roll.pla"), ElementsAre("C'0 1"));
}

TEST_F(RefreshTest, ReadsFilesOfAnyExtension) {
    AddList("notes.txt", {"A0 0", "not an entry"});
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("notes.txt"), ElementsAre("A0 0"));
}

/// An entry keeps its album, so a song that has moved to another one is logged and not followed.
TEST_F(RefreshTest, TellsOfASongThatIsOnAnotherAlbumNow) {
    AddList("Mine.pla", {"A0 2"});
    CapturePlaylists(run());
    library.Execute("UPDATE Tracks SET CDJID='B0', Track=4 WHERE Title='Three'");
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 3"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Playlist Mine.pla, A0 2 names a song that is now on album B0",
                            "Quillon: Playlist Mine.pla, Track # updated from 2 to A0 3"));
}

/// Position -1 would be the whole album.
TEST_F(RefreshTest, KeepsTheLineOfASongThatHasNoNumber) {
    AddList("Mine.pla", {"A0 0", "A0 1"});
    CapturePlaylists(run());
    Renumber("One", 0);
    library.Execute("UPDATE Tracks SET Track=Null WHERE Title='Two'");
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0", "A0 1"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Playlist Mine.pla, A0 0 kept as it is because the track has "
                            "no number",
                            "Quillon: Playlist Mine.pla, A0 1 kept as it is because the track has "
                            "no number"));
}

TEST_F(RefreshTest, DoesNothingWithoutTracksOrFolder) {
    AddList("Mine.pla", {"A0 0"});
    CapturePlaylists(run());
    library.Execute("DELETE * FROM Tracks");
    RefreshPlaylist(run());
    EXPECT_TRUE(ListExists("Mine.pla"));
    for (const char* path : {"", "\\", R"(D:\Nowhere\)"}) {
        run().settings.PlayListPath = path;
        RefreshPlaylist(run());
    }
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(RefreshTest, ShowsWhatItDoes) {
    AddList("Mine.pla", {"A0 0"});
    CapturePlaylists(run());
    library.calls.Forget();
    RefreshPlaylist(run());
    EXPECT_THAT(library.calls.Of({"Item"}),
                ElementsAre("Item 1. Update Existing Playlists",
                            "Item 1. Update Existing Playlists - Mine.pla"));
}

class LongListTest : public RefreshTest {
  protected:
    static constexpr int Most = 5000;

    /// A list of that many songs in which one blank line asks for a rewrite, and a list behind it.
    void Refresh(int songs) {
        const auto table = run().connection->OpenTable("Tracks");
        std::vector<std::string> lines{""};
        for (int i = 0; i < songs; ++i) {
            table->AddNew();
            table->Set("CDJID", std::string("L0"));
            table->Set("Track", std::int64_t{i + 1});
            table->Update();
            lines.push_back("L0 " + std::to_string(i));
        }
        AddList("Long.pla", lines);
        AddList("Short.pla", {"A0 0", ""});
        CapturePlaylists(run());
        RefreshPlaylist(run());
    }
};

TEST_F(LongListTest, HoldsFiveThousandEntries) {
    Refresh(Most);
    EXPECT_THAT(Lines("Long.pla"), SizeIs(Most));
    EXPECT_THAT(Lines("Short.pla"), SizeIs(1));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(LongListTest, LeavesOneAloneWithAnEntryMore) {
    Refresh(Most + 1);
    EXPECT_THAT(Lines("Long.pla"), SizeIs(Most + 2)) << "the list stays as it is";
    EXPECT_THAT(Lines("Short.pla"), SizeIs(1)) << "the others are repaired";
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Refresh Playlist Error: Line 0 Subscript out of range: "
                            R"(playlist Long.pla has more than 5000 entries (D:\Lists\Long.pla))"));
}

TEST_F(RefreshTest, NotesWhatHasGone) {
    AddList("Gone.pla", {"C0 0"});
    CapturePlaylists(run());
    RefreshPlaylist(run());
    EXPECT_THAT(run().removals.Of(Removable::Playlists).names, ElementsAre(R"(D:\Lists\Gone.pla)"));
}

/// A song whose file was a duplicate of another one goes on as that.
TEST_F(RefreshTest, LetsEntriesFollowSongsThatBecameOthers) {
    AddList("Mine.pla", {"A0 0", "B0 0"});
    AddList("Both.pla", {"A0 1", "A0 0", "A0 2"});
    CapturePlaylists(run());
    Entries().SongBecame(1, 3);
    library.Execute("DELETE * FROM Tracks WHERE ID=1");
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 2", "B0 0"));
    EXPECT_THAT(Lines("Both.pla"), ElementsAre("A0 1", "A0 2")) << "the first place stays";
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Playlist Both.pla, Track # updated from 0 to A0 2",
                            "Quillon: Playlist Both.pla contains duplicate track 2 on A0 and was "
                            "removed",
                            "Quillon: Playlist Mine.pla, Track # updated from 0 to A0 2"));
}

TEST_F(RefreshTest, LetsEntriesFollowSongsThatBecameOnesOfAnotherAlbum) {
    AddList("Mine.pla", {"A0 0"});
    CapturePlaylists(run());
    Entries().SongBecame(1, 4);
    library.Execute("DELETE * FROM Tracks WHERE ID=1");
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("B0 0"));
}

}  // namespace
}  // namespace quillon
