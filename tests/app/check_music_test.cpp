#include <filesystem>
#include <gtest/gtest.h>

#include "tests/app/check_fixture.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class CheckMusic : public CheckFixture {
  protected:
    /// Music as it is on a mount point whose drive is away.
    void Unmount() const {
        fs::remove_all(Path("Music"));
        MakeFolder("Music");
    }
    void AddSong(const std::string& path) const {
        fs::create_directories(Path(path).parent_path());
        Write(path, "sound");
    }
};

const std::vector<std::string> TwoSongs{"D:\\Music\\Alder\\First Light\\01 - Dawn.mp3",
                                        "D:\\Music\\Alder\\First Light\\02 - Noon.mp3"};

TEST_F(CheckMusic, FindsNothingWrongWithALibraryWhereItShouldBe) {
    AddOwnedTracks(TwoSongs);
    EXPECT_EQ(Check().status, 0);
    EXPECT_EQ(Problems() + Cautions(), "");
    EXPECT_TRUE(Has(Check().out,
                    "  2 of the tracks are the library's own, 2 of them name a file in a library "
                    "folder\n"));
}

TEST_F(CheckMusic, SeesAnEmptyRoot) {
    AddOwnedTracks(TwoSongs);
    Unmount();
    EXPECT_EQ(Check().status, 2);
    EXPECT_EQ(Problems(),
              "  - LibraryRoot (D:\\Music) holds no music at all, and the library has 2 tracks of "
              "its own. Is a drive not mounted? A run would remove nothing and end with an error. "
              "If the music is gone for good, run once with --allow-removals.");
    Write("shelf/host.ini", Read("shelf/host.ini") + "\n[Other]\n");
    std::string host = Read("shelf/host.ini");
    Write("shelf/host.ini", host.replace(host.find("Brake=1"), 7, "Brake=0"));
    EXPECT_TRUE(Has(Problems(), "Without the brake a run would remove their rows"));
}

TEST_F(CheckMusic, SeesAnEmptyRootBeforeFilesAreAdded) {
    AddOwnedTracks(TwoSongs);
    MakeFolder("New");
    Choose("AddFiles");
    Set("FromFilesPath", "Z:" + Path("New").string());
    EXPECT_FALSE(Has(Problems(), "holds no music"));
    Unmount();
    EXPECT_TRUE(Has(Problems(),
                    "LibraryRoot (D:\\Music) holds no music at all, and 2 of the library's own "
                    "tracks lie below it. Is a drive not mounted? A run would add nothing"));
}

TEST_F(CheckMusic, SeesAPlaylistFolderWhoseListsAreAway) {
    AddOwnedTracks(TwoSongs);
    Set("PlayListPath", "H:\\Lists\\");
    MakeFolder("shelf/Lists");
    EXPECT_EQ(Problems(), "");
    Execute(
        "INSERT INTO Playlists (FilePath, Filename, Type) VALUES ('H:\\Lists\\', 'Mine', '.pla')");
    EXPECT_EQ(Problems(),
              "  - PlayListPath (H:\\Lists\\) holds no playlist at all, and the database has 1 "
              "playlist there. Is a drive not mounted? A run would remove nothing and end with an "
              "error. If they are gone for good, run once with --allow-removals, or empty the "
              "setting.");
    Write("shelf/Lists/Other.pla", "CDJ Playlist V1.1\r\n");
    EXPECT_EQ(Problems(), "");
}

TEST_F(CheckMusic, TakesAMountPointWithWhatTheFileSystemKeepsForItselfForEmpty) {
    AddOwnedTracks(TwoSongs);
    Unmount();
    MakeFolder("Music/lost+found/Alder/First Light");
    Write("Music/lost+found/Alder/First Light/x.mp3", "sound");
    EXPECT_TRUE(Has(Problems(), "LibraryRoot (D:\\Music) holds no music at all"));
    Set("LibraryDepthOption", "1");
    EXPECT_TRUE(Has(Problems(), "LibraryRoot (D:\\Music) holds no music at all"));
}

TEST_F(CheckMusic, TakesFoldersWithoutSongsForEmpty) {
    AddOwnedTracks(TwoSongs);
    fs::rename(Path("Music/Alder/First Light/01 - Dawn.mp3"),
               Path("Music/Alder/First Light/a.txt"));
    EXPECT_TRUE(Has(Problems(), "LibraryRoot (D:\\Music) holds no music at all"));
}

TEST_F(CheckMusic, OnlyRemarksThatThereIsNothingYet) {
    Unmount();
    EXPECT_EQ(Check().status, 0);
    EXPECT_TRUE(Has(Cautions(), "LibraryRoot (D:\\Music) holds no music, so there is nothing to"));
}

TEST_F(CheckMusic, BelongsToReconciliations) {
    AddOwnedTracks(TwoSongs);
    Unmount();
    Set("PlaylistsOnly", "1");
    EXPECT_EQ(Check().status, 0);
    Set("PlaylistsOnly", "0");
    Choose("MakeRemote");
    EXPECT_EQ(Problems(), "");
}

TEST_F(CheckMusic, SeesThatOneOfSeveralLibraryFoldersIsEmpty) {
    Set("LibraryDepthOption", "1");
    AddSong("Music/Jazz/Birch/Quiet/01 - Hush.mp3");
    MakeFolder("Music/Rock");
    MakeFolder("Elsewhere");
    Write("Music/more.txt", "D:\\Elsewhere\r\n");
    EXPECT_EQ(Problems(), "") << "nothing is known of what was there";
    AddOwnedTracks({"D:\\Music\\Jazz\\Birch\\Quiet\\01 - Hush.mp3",
                    "D:\\Music\\Rock\\Alder\\First Light\\01 - Dawn.mp3",
                    "D:\\Elsewhere\\Cedar\\Roots\\01 - Deep.mp3",
                    "D:\\Elsewhere\\Cedar\\Roots\\02 - Deeper.mp3"});
    EXPECT_EQ(Check().status, 2);
    const std::string problems = Problems();
    EXPECT_TRUE(Has(problems,
                    "Library folder (D:\\Music\\Rock) holds no music at all, and 1 of "
                    "the library's own tracks lies below it. Is a drive not mounted?"))
        << problems;
    EXPECT_TRUE(Has(problems,
                    "Library folder (D:\\Elsewhere) holds no music at all, and 2 of the "
                    "library's own tracks lie below it."))
        << problems;
    EXPECT_FALSE(Has(problems, "Jazz"));
}

TEST_F(CheckMusic, SeesThatAListedLibraryFolderIsAway) {
    Set("LibraryDepthOption", "1");
    Write("Music/more.txt", "D:\\Elsewhere\\\r\nD:\\Nowhere\r\nno path\r\n");
    AddSong("Music/Jazz/Birch/Quiet/01 - Hush.mp3");
    fs::remove_all(Path("Music/Alder"));
    AddOwnedTracks({"D:\\Elsewhere\\Cedar\\Roots\\01 - Deep.mp3"});
    EXPECT_EQ(Check().status, 2);
    EXPECT_EQ(Problems(),
              "  - Library folder (D:\\Elsewhere), which a .txt file in LibraryRoot names, is not "
              "there, and 1 of the library's own tracks lies below it. Is a drive not mounted? A "
              "run would keep their rows and end with an error. If the music is gone for good, "
              "delete the line.");
}

TEST_F(CheckMusic, SeesThatAListOfLibraryFoldersIsLost) {
    Set("LibraryDepthOption", "1");
    AddSong("Music/Jazz/Birch/Quiet/01 - Hush.mp3");
    fs::remove_all(Path("Music/Alder"));
    AddOwnedTracks({"D:\\Music\\Jazz\\Birch\\Quiet\\01 - Hush.mp3",
                    "D:\\Elsewhere\\Cedar\\Roots\\01 - Deep.mp3"});
    EXPECT_EQ(Check().status, 0);
    EXPECT_EQ(
        Cautions(),
        "  - 1 of the library's own tracks lies in none of the library folders "
        "(D:\\Elsewhere\\Cedar\\Roots\\01 - Deep.mp3 for one). A run takes them for missing, "
        "and then the brake keeps all rows. Check LibraryRoot and its .txt files and [Drives] in "
        "host.ini; if that music is gone for good, run once with "
        "--allow-removals.");
}

TEST_F(CheckMusic, SeesThatTheDatabaseKnowsTheMusicByOtherPaths) {
    AddOwnedTracks({"E:\\Old\\A\\T\\x.mp3"});
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(),
                    "1 of the library's own tracks lies in none of the library folders "
                    "(E:\\Old\\A\\T\\x.mp3 for one)"));
    Execute("UPDATE Tracks SET SoundFile='d:\\MUSIC\\A\\T\\x.mp3'");
    EXPECT_EQ(Problems() + Cautions(), "") << "letter case does not count";
    Execute("UPDATE Tracks SET SoundFile=Null");
    EXPECT_EQ(Problems() + Cautions(), "");
}

TEST_F(CheckMusic, SeesARootThatIsALevelTooHigh) {
    fs::rename(Path("Music"), Path("Inner"));
    MakeFolder("Music");
    fs::rename(Path("Inner"), Path("Music/Inner"));
    EXPECT_EQ(Check().status, 0);
    EXPECT_TRUE(
        Has(Cautions(),
            "  - LibraryRoot (D:\\Music) has music only further down than a run looks for it: "
            "D:\\Music\\Inner\\Alder\\First Light\\01 - Dawn.mp3 for one, where it expects "
            "ARTIST\\ALBUM\\Song.mp3. Name the folder below it, or set LibraryDepthOption=1 "
            "where each folder in it is a library."));
    AddOwnedTracks({"D:\\Music\\Inner\\Alder\\First Light\\01 - Dawn.mp3"});
    EXPECT_TRUE(Has(Problems(), "has music only further down"));
    Set("LibraryDepthOption", "1");
    EXPECT_EQ(Problems() + Cautions(), "");
}

TEST_F(CheckMusic, SeesARootThatIsALevelTooLow) {
    Set("LibraryRoot", "D:\\Music\\Alder");
    AddOwnedTracks(
        {"D:\\Music\\Alder\\First Light\\01 - Dawn.mp3", "D:\\Music\\Birch\\Quiet\\01 - Hush.mp3"});
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(),
                    "LibraryRoot (D:\\Music\\Alder) has music only further up than a run looks for "
                    "it: D:\\Music\\Alder\\First Light\\01 - Dawn.mp3 for one"));
    EXPECT_TRUE(Has(Cautions(), "(D:\\Music\\Birch\\Quiet\\01 - Hush.mp3 for one)"));
}

TEST_F(CheckMusic, KnowsThatFlatMusicLiesInTheRootItself) {
    Set("FlatStructure", "1");
    EXPECT_TRUE(Has(Cautions(), "Folders of artists and albums need FlatStructure=0"));
    Write("Music/Alder_Dawn.mp3", "sound");
    EXPECT_FALSE(Has(Cautions(), "FlatStructure"));
    Set("FlatStructure", "0");
    EXPECT_FALSE(Has(Cautions(), "FlatStructure")) << "one song where it should be is enough";
    fs::remove_all(Path("Music/Alder"));
    EXPECT_TRUE(Has(Cautions(), "songs side by side, named Artist_Song.mp3, need FlatStructure=1"));
}

TEST_F(CheckMusic, SaysNothingWhereItCouldNotLookEverywhere) {
    AddOwnedTracks(TwoSongs);
    Unmount();
    fs::create_symlink(Path("away"), Path("Music/Alder"));
    EXPECT_FALSE(Has(Problems(), "holds no music at all"));
}

}  // namespace
}  // namespace quillon
