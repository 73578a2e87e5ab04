// Which files of the playlist folder are playlists, and what is said of folders that are more.

#include "playlists/playlist_folder.h"

#include <gmock/gmock.h>

#include "playlists/convert.h"
#include "playlists/list_likeness.h"
#include "tests/playlists/playlist_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class PlaylistFolderTest : public PlaylistTest {
  protected:
    PlaylistFolderTest() {
        run().settings.GenrePlaylist = false;
        run().settings.ArtistPlaylist = false;
    }

    void AddText(const std::string& name, const std::string& text) {
        library.files.AddFile(Folder + name, text);
    }

    bool IsList(const std::string& name, const std::string& text) {
        AddText(name, text);
        return ReadsAsPlaylist(run(), library.files.GetFile(Folder + name));
    }

    void Repair() {
        CapturePlaylists(run());
        RefreshPlaylist(run());
    }

    /// What is said of this folder when playlists are worked with.
    std::string RemarkOn(const std::string& folder) {
        library.host.log.clear();
        run().settings.PlayListPath = folder;
        CapturePlaylists(run());
        return library.host.log.empty() ? "" : library.host.log.front();
    }
};

TEST_F(PlaylistFolderTest, HoldsPlaylistsByTheirNames) {
    EXPECT_TRUE(HasPlaylistName("Mine.pla"));
    EXPECT_TRUE(HasPlaylistName("Mine.PLA"));
    EXPECT_FALSE(HasPlaylistName("Mine.plan"));
    EXPECT_FALSE(HasPlaylistName("pla"));
    EXPECT_FALSE(HasPlaylistName("._Mine.pla"));
}

TEST_F(PlaylistFolderTest, HoldsPlaylistsOfOtherNamesThatReadAsSuch) {
    EXPECT_TRUE(IsList("a.txt", "CDJ Playlist V1.1\r\nwhatever\r\n"));
    EXPECT_TRUE(IsList("b", "CDJ Playlist V1.1"));
    EXPECT_TRUE(IsList("c.txt", "anything\r\nA0 0\r\n\r\nC0 12\r\nB0 -1\r\n"));
    std::string longList = "anything\r\n";
    for (int i = 0; i < 1000; ++i)
        longList += "A0 1\r\n";
    EXPECT_TRUE(IsList("d.bak", longList));
}

TEST_F(PlaylistFolderTest, HoldsOtherFilesThatOnlyLookAlike) {
    EXPECT_FALSE(IsList("a.txt", ""));
    EXPECT_FALSE(IsList("b.txt", "CDJ Playlist V1.1 and more\r\n"));
    EXPECT_FALSE(IsList("c.txt", "To buy\r\nmilk 2\r\neggs 12\r\n")) << "no album of that name";
    EXPECT_FALSE(IsList("d.txt", "A0 0\r\n")) << "no entry behind the first line";
    EXPECT_FALSE(IsList("e.txt", "x\r\nA0 0\r\nand a line of another kind\r\n"));
    EXPECT_FALSE(IsList("f.txt", "x\r\nA0 0.5\r\n"));
    EXPECT_FALSE(IsList("g.txt", "x\r\nA0 123456\r\n"));
    std::string longText = "x\r\n";
    for (int i = 0; i < 1000; ++i)
        longText += "A0 1\r\n";
    EXPECT_FALSE(IsList("h.txt", longText + "the end\r\n"));
}

TEST_F(PlaylistFolderTest, NeverTakesSettingsDatabasesMusicAndOtherPlayersListsForPlaylists) {
    for (const char* name : {"x.ini", "x.MDB", "x.ldb", "x.mp3", "x.log", "x.m3u", "x.m3u8"})
        EXPECT_FALSE(IsList(name, "CDJ Playlist V1.1\r\nA0 0\r\n")) << name;
}

TEST_F(PlaylistFolderTest, KeepsEveryFileThatIsNoPlaylist) {
    run().settings.Nirvis_CDJ_DB = R"(Z:\home\lists\Jukebox.mdb)";
    const std::vector<std::string> names{"Quillon.ini",
                                         "host.ini",
                                         "HOST.LOG",
                                         "jukebox.mdb",
                                         "jukebox.mdb.playlists",
                                         "jukebox.ldb",
                                         "jukebox.mdb_Copy Dated_11152026_53855_AM_",
                                         "notes.txt",
                                         "song.mp3",
                                         "._Mine.pla",
                                         "x.m3u"};
    for (const std::string& name : names)
        AddText(name, "CDJ Playlist V1.1\r\nC0 0\r\n");
    AddText("notes.txt", "to do\r\nnothing\r\n");
    AddList("Mine.pla", {"A0 0", ""});
    Repair();
    for (const std::string& name : names)
        EXPECT_TRUE(ListExists(name)) << name;
    EXPECT_THAT(Lines("Mine.pla"), SizeIs(1));
    EXPECT_THAT(library.calls.Of({"DeleteFile D:\\Lists"}), IsEmpty());
}

TEST_F(PlaylistFolderTest, TakesNoPlaylistForTheDatabasesCompanion) {
    run().settings.Nirvis_CDJ_DB = R"(D:\Lists\Rock)";
    AddList("Rock.pla", {"A0 0"});
    AddList("Rock.best.pla", {"A0 0"});
    AddText("Rock", "CDJ Playlist V1.1\r\nA0 0\r\n");
    CapturePlaylists(run());
    EXPECT_THAT(Captured(), ElementsAre("Rock.best.pla A0 0 1", "Rock.pla A0 0 1"));
}

/// Whether it is a list cannot be told, so it is one that was not read.
TEST_F(PlaylistFolderTest, NamesAFileThatCannotBeReadToTell) {
    AddText("notes.txt", "x");
    library.calls.Refuse(R"(OpenBinary D:\Lists\notes.txt)", FailureNumber::PathFileAccess, "x");
    CapturePlaylists(run());
    EXPECT_TRUE(Entries().IsUnread("notes.txt"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Capture Playlists Error: Line 2 Path/File access error: x "
                            R"((D:\Lists\notes.txt))"));
}

TEST_F(PlaylistFolderTest, ConvertsNothingElse) {
    AddText("Quillon.ini", "[NPFrame]\r\nA=1\r\n");
    AddText("song.mp3", "ID3\r\nA0 0\r\n");
    AddText("notes.txt", "to do\r\nnothing\r\n");
    AddList("Mine.pla", {"A0 0"});
    aPlaToM3u_Click(run());
    std::vector<std::string> made;
    for (const FileEntry& file : library.files.FilesIn(R"(D:\M3u)"))
        made.push_back(file.name);
    EXPECT_THAT(made, ElementsAre("Mine.m3u"));
}

TEST_F(PlaylistFolderTest, IsToBeAFolderOfItsOwn) {
    AddList("Mine.pla", {"A0 0"});
    EXPECT_EQ(RemarkOn(Folder), "");
    library.host.appPath = R"(D:\Host)";
    library.files.AddFolder(R"(D:\Host)");
    library.files.AddFolder(R"(D:\Data)");
    EXPECT_EQ(RemarkOn(R"(D:\Host\)"),
              R"(Quillon: PlayListPath (D:\Host\) is the host folder, with settings and log. Only )"
              "playlists are changed there, but each backup copies everything in it. Name a folder "
              "that holds playlists alone");
    EXPECT_THAT(RemarkOn(R"(D:\Data\)"), HasSubstr("is the folder of the database"));
    EXPECT_THAT(RemarkOn(R"(D:\Music\)"), HasSubstr("lies in the library"));
    library.files.AddFolder(R"(D:\Music\Lists)");
    EXPECT_THAT(RemarkOn(R"(D:\Music\Lists\)"), HasSubstr("lies in the library"));
}

TEST_F(PlaylistFolderTest, IsToHoldNeitherSettingsNorDatabasesNorMusic) {
    for (const char* name : {"x.ini", "x.mdb", "x.MP3"}) {
        AddText(name, "");
        EXPECT_THAT(RemarkOn(Folder),
                    HasSubstr("holds other files, " + std::string(name) + " for one"));
        library.files.DeleteFile(std::string(Folder) + name);
    }
    AddText("notes.txt", "");
    EXPECT_EQ(RemarkOn(Folder), "");
}

}  // namespace
}  // namespace quillon
