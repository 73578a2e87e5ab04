#include <filesystem>
#include <gtest/gtest.h>

#include "tests/app/check_fixture.h"
#include "tests/outside/child_process.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class CheckFolders : public CheckFixture {
  protected:
    std::string Table() const { return Section(Check().out, "Folders"); }
};

TEST_F(CheckFolders, TellsHowEachOneStands) {
    Set("LibraryRoot", "D:\\Nowhere");
    Set("AlbumCoverFolder", "Q:\\Covers");
    Set("PlayListPath2", "H:\\Quillon.ini");
    fs::remove(Path("shelf/Data"));
    EXPECT_EQ(Table(),
              "  Folder            State             Path\n"
              "  ----------------  ----------------  ---------------\n"
              "  LibraryRoot       not there         D:\\Nowhere\n"
              "  FromFilesPath     not set           (empty)\n"
              "  PlayListPath      there             H:\\Playlists\\\n"
              "  PlayListPath2     no folder         H:\\Quillon.ini\\\n"
              "  AlbumCoverFolder  no drive          Q:\\Covers\\\n"
              "  Data              made when needed  H:\\Data\n"
              "  HTML              there             H:\\HTML");
}

TEST_F(CheckFolders, ReportsThoseThatAReconciliationCanDoWithout) {
    fs::remove(Path("shelf/Covers"));
    fs::remove(Path("shelf/Data"));
    Set("PlayListPath", "Q:\\Lists");
    EXPECT_EQ(Check().status, 0);
    const std::string cautions = Cautions();
    EXPECT_TRUE(Has(cautions, "Folder AlbumCoverFolder (H:\\Covers\\) is not there. Make it"));
    EXPECT_TRUE(Has(cautions, "Folder PlayListPath (Q:\\Lists\\) is not on a drive"));
    EXPECT_FALSE(Has(cautions, "Data"));
    Set("PlayListPath", "");
    EXPECT_TRUE(Has(Cautions(), "Folder PlayListPath is not set: no playlist can be kept or made"));
}

TEST_F(CheckFolders, TheOneOfCoversIsWrittenWherePicturesInSongsAreCovers) {
    fs::permissions(Folder(), fs::perms::others_all, fs::perm_options::add);
    fs::permissions(Path("shelf/Covers"), fs::perms::owner_read | fs::perms::owner_exec |
                                              fs::perms::others_read | fs::perms::others_exec);
    const auto cautions = [this] { return outside::AsOrdinaryUser([this] { return Cautions(); }); };
    const std::string caution =
        "Folder AlbumCoverFolder (H:\\Covers\\) cannot be written by this account, so the pictures "
        "in songs, which FolderImages in [Covers] of host.ini asks for, become no covers. Give it "
        "the right to write there";
    const std::string asked = cautions();
    EXPECT_TRUE(Has(asked, caution)) << asked;
    SetHostLine("FolderImages=1", "FolderImages=0");
    const std::string notAsked = cautions();
    EXPECT_FALSE(Has(notAsked, "AlbumCoverFolder")) << notAsked;
}

TEST_F(CheckFolders, AReconciliationNeedsTheMusic) {
    Set("LibraryRoot", "D:\\Nowhere");
    EXPECT_TRUE(Has(Problems(), "Folder LibraryRoot (D:\\Nowhere) is not there"));
    Set("LibraryRoot", "");
    EXPECT_TRUE(Has(Problems(), "Folder LibraryRoot is not set, and the run needs it"));
    EXPECT_EQ(Check().status, 2);
}

TEST_F(CheckFolders, ALibraryOfSeveralFoldersNeedsOne) {
    Set("LibraryDepthOption", "1");
    fs::remove_all(Path("Music/Alder"));
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(), "holds neither a folder nor a .txt file that names one"));
    MakeFolder("Elsewhere");
    Write("Music/more.txt", "D:\\Elsewhere\r\n");
    EXPECT_EQ(Problems(), "");
    Write("Music/more.txt", "D:\\Nowhere\r\n");
    EXPECT_EQ(Check().status, 2);
    MakeFolder("Music/Rooms");
    EXPECT_EQ(Check().status, 0);
}

TEST_F(CheckFolders, AListOfLibraryFoldersThatCannotBeReadStopsEveryRun) {
    Set("LibraryDepthOption", "1");
    Write("Music/more.txt", "D:\\Elsewhere\r\n");
    fs::permissions(Folder(), fs::perms::others_all, fs::perm_options::add);
    fs::permissions(Path("Music/more.txt"), fs::perms::none);
    const std::string problems = outside::AsOrdinaryUser([this] { return Problems(); });
    EXPECT_TRUE(Has(problems, "The library folders cannot be determined")) << problems;
    EXPECT_TRUE(Has(problems, "D:\\Music\\more.txt")) << problems;
}

TEST_F(CheckFolders, APlaylistsOnlyRunNeedsThePlaylistsAndNoMusic) {
    Set("PlaylistsOnly", "1");
    Set("LibraryRoot", "D:\\Nowhere");
    EXPECT_EQ(Check().status, 0);
    EXPECT_EQ(Cautions(), "");
    fs::remove(Path("shelf/Playlists"));
    EXPECT_TRUE(Has(Problems(), "Folder PlayListPath (H:\\Playlists\\) is not there"));
}

TEST_F(CheckFolders, AddingFilesNeedsWhereTheyComeFromAndWhereTheyGo) {
    Choose("AddFiles");
    EXPECT_TRUE(Has(Problems(), "Folder FromFilesPath is not set, and the run needs it"));
    MakeFolder("New");
    Set("FromFilesPath", "D:\\New");
    EXPECT_EQ(Check().status, 0) << Check().out;
    Set("LibraryRoot", "D:\\Nowhere");
    EXPECT_TRUE(Has(Problems(), "Folder LibraryRoot (D:\\Nowhere) is not there"));
}

TEST_F(CheckFolders, ConvertingPlaylistsNeedsBothFolders) {
    Choose("PlaToM3u");
    Set("LibraryRoot", "");
    EXPECT_EQ(Check().status, 0);
    fs::remove(Path("shelf/M3u"));
    EXPECT_TRUE(Has(Problems(), "Folder PlayListPath2 (H:\\M3u\\) is not there"));
    Set("PlayListPath", "");
    EXPECT_TRUE(Has(Problems(), "Folder PlayListPath is not set, and the run needs it"));
}

TEST_F(CheckFolders, TheAlbumPickerMakesItsFoldersAndNeedsNoMusic) {
    Choose("AlbumPicker");
    Set("LibraryRoot", "");
    fs::remove(Path("shelf/HTML"));
    EXPECT_EQ(Check().status, 0);
    EXPECT_EQ(Cautions(), "");
    Write("shelf/HTML", "a file");
    EXPECT_TRUE(Has(Problems(), "Folder HTML (H:\\HTML) is not a folder"));
}

TEST_F(CheckFolders, FindsASourceOfNewMusicThatOverlapsTheLibrary) {
    MakeFolder("Music/New");
    Set("FromFilesPath", "D:\\music\\new");
    EXPECT_TRUE(Has(Cautions(), "FromFilesPath (D:\\music\\new) lies in the library (D:\\Music)"));
    EXPECT_EQ(Check().status, 0);
    Choose("AddFiles");
    EXPECT_TRUE(Has(Problems(), "lies in the library"));
    Set("FromFilesPath", "D:\\Music\\");
    EXPECT_TRUE(Has(Problems(), "FromFilesPath (D:\\Music\\) is the library itself"));
    Set("FromFilesPath", "D:\\");
    EXPECT_TRUE(Has(Problems(), "FromFilesPath (D:\\) holds the library (D:\\Music)"));
    EXPECT_EQ(Check().status, 2);
}

/// Lists of both kinds may share a folder.
TEST_F(CheckFolders, HasNothingAgainstPlaylistFoldersThatAreTheSame) {
    Set("PlayListPath2", "Z:" + Path("shelf/Playlists").string());
    EXPECT_EQ(Cautions(), "");
}

TEST_F(CheckFolders, FindsPlaylistFoldersWithinTheLibrary) {
    MakeFolder("Music/Lists");
    Set("PlayListPath", "D:\\Music\\Lists");
    EXPECT_TRUE(Has(Cautions(), "PlayListPath (D:\\Music\\Lists\\) lies in the library"));
    Set("PlayListPath", "H:\\Playlists");
    Set("PlayListPath2", "D:\\Music");
    EXPECT_TRUE(Has(Cautions(), "PlayListPath2 (D:\\Music\\) lies in the library"));
}

TEST_F(CheckFolders, FindsAPlaylistFolderThatIsMoreThanThat) {
    Set("PlayListPath", "H:\\");
    EXPECT_TRUE(Has(Cautions(),
                    "PlayListPath (H:\\) is the root of a drive, is the host folder, with settings "
                    "and log, is the folder of the database, holds other files, host.ini for "
                    "one. Only playlists are changed there"))
        << Cautions();
    EXPECT_EQ(Check().status, 2) << "no backup can lie beside a drive";
    Choose("PlaToM3u");
    EXPECT_TRUE(Has(Cautions(), "is the host folder"));
    Choose("AlbumPicker");
    Set("PlaToM3u", "0");
    EXPECT_EQ(Cautions(), "") << "it has no use for playlists";
}

TEST_F(CheckFolders, FindsOtherFilesInThePlaylistFolder) {
    Write("shelf/Playlists/Mine.PLA", "header\r\n");
    Write("shelf/Playlists/notes.txt", "x");
    EXPECT_EQ(Cautions(), "") << "both are left alone";
    Write("shelf/Playlists/song.mp3", "x");
    EXPECT_TRUE(
        Has(Cautions(), "PlayListPath (H:\\Playlists\\) holds other files, song.mp3 for one"));
}

}  // namespace
}  // namespace quillon
