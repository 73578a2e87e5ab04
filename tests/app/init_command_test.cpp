#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

#include "jet/database.h"
#include "jukebox/jukebox_database.h"
#include "tests/app/program_test.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class InitCommand : public ProgramTest {
  protected:
    ProgramResult Init(const std::vector<std::string>& more) const {
        std::vector<std::string> words{"init", Path("shelf").string()};
        words.insert(words.end(), more.begin(), more.end());
        return CallProgram(words);
    }
    /// "cdj.mdb" with one owned track of this file.
    void CreateDatabaseWithTrack(const std::string& soundFile) const {
        CreateJukeboxDatabase(Path("cdj.mdb"));
        auto database = jet::Database::Open(Path("cdj.mdb"), jet::OpenMode::ReadWrite);
        database.Execute(
            "INSERT INTO Albums (CDJID, Title, Artist, Player) "
            "VALUES ('1', 'Dawn', 'Alder', 1001)");
        database.Execute("INSERT INTO Tracks (CDJID, Track, SoundFile) VALUES ('1', 1, '" +
                         soundFile + "')");
        // Of another player: its paths mean nothing here.
        database.Execute("INSERT INTO Albums (CDJID, Player) VALUES ('2', 1)");
        database.Execute(
            "INSERT INTO Tracks (CDJID, Track, SoundFile) "
            "VALUES ('2', 1, 'Q:\\Else\\01.mp3')");
    }
    bool HasEntry(const std::string& file, const std::string& entry) const {
        return ("\n" + Read(file)).find("\n" + entry + "\n") != std::string::npos;
    }
};

TEST_F(InitCommand, MakesAWholeHostFolder) {
    const fs::path music = MakeFolder("Some Music");
    const ProgramResult result = Init({"--music", music.string()});
    ASSERT_EQ(result.status, 0) << result.err;
    for (const char* const folder : {"Playlists", "M3u", "Covers", "Data", "HTML"})
        EXPECT_TRUE(fs::is_directory(Path("shelf") / folder)) << folder;

    EXPECT_TRUE(HasEntry("shelf/host.ini", "Quillon=1"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "H=."));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "Host=localhost"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "ScanLibrary=0"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "ReservedFolder="));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "D=" + Folder().string()));
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "Reconcile=1"));
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "LibraryRoot=D:\\Some Music"));
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "Nirvis_CDJ_DB=H:\\jukebox.mdb"));
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "PlayListPath=H:\\Playlists\\"));
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "PlayListPath2=H:\\M3u\\"));
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "AlbumCoverFolder=H:\\Covers\\"));
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "FlatStructure=0"));
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "ID3Reconcile=0"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "Keep=1"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "OnlyIdentical=1"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "FollowMovedFiles=1"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "Style=modern"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "KeepDays=14"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "Local=1"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "Numbers=tags"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "Discs=1"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "TrackArtists=1"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "FolderImages=1"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "Read=best"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "Write=both"));

    const auto database = jet::Database::Open(Path("shelf/jukebox.mdb"), jet::OpenMode::ReadOnly);
    EXPECT_EQ(database.Tables().size(), JukeboxTables().size());
}

TEST_F(InitCommand, WritesTheBrakesLimitsAsTheyHoldWithoutThem) {
    MakeFolder("Music");
    ASSERT_EQ(Init({"--music", Path("Music").string()}).status, 0);
    const std::string host = Read("shelf/host.ini");
    const std::string section = host.substr(host.find("\n[Safety]\n"));
    for (const char* const line :
         {"\nBrake=1\n", "\nMaxRemovedTracks=50\n", "\nMaxRemovedPercent=20\n",
          "\nMaxRemovedFiles=20\n", "\nMaxRemovedPlaylists=5\n"})
        EXPECT_NE(section.find(line), std::string::npos) << line;
    EXPECT_EQ(section.find("\n[", 1), std::string::npos) << "no other section takes one of them";

    const auto brake = [this] {
        const std::string out = CallProgram({"check", "--host", Path("shelf")}).out;
        const std::size_t start = out.find("\nBrake ");
        return out.substr(start, out.find('\n', start + 1) - start);
    };
    const std::string written = brake();
    Write("shelf/host.ini", host.substr(0, host.find("\n[Safety]\n")));
    EXPECT_EQ(brake(), written);
    EXPECT_NE(written.find("on: more than 50 tracks and 20 % of all, 20 music files or 5"),
              std::string::npos)
        << written;
}

TEST_F(InitCommand, TellsTheNextTwoCommands) {
    MakeFolder("Music");
    const std::string out = Init({"--music", Path("Music").string()}).out;
    EXPECT_NE(out.find("\n  quillon check --host " + Path("shelf").string() + "\n"),
              std::string::npos);
    EXPECT_NE(out.find("\n  quillon run --host " + Path("shelf").string() + "\n"),
              std::string::npos);
}

TEST_F(InitCommand, QuotesAFolderThatAShellWouldTakeApart) {
    MakeFolder("Music");
    const auto result =
        CallProgram({"init", Path("my 'new' shelf"), "--music", Path("Music").string()});
    EXPECT_NE(
        result.out.find("quillon run --host '" + Folder().string() + "/my '\\''new'\\'' shelf'\n"),
        std::string::npos)
        << result.out;
}

TEST_F(InitCommand, TakesAFlatLayout) {
    MakeFolder("Music");
    ASSERT_EQ(Init({"--music", Path("Music").string(), "--layout", "flat"}).status, 0);
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "FlatStructure=1"));
}

TEST_F(InitCommand, TakesPathsRelativeToTheCurrentFolder) {
    MakeFolder("Music");
    MakeFolder("elsewhere");
    const fs::path before = fs::current_path();
    fs::current_path(Path("elsewhere"));
    const ProgramResult result = CallProgram({"init", "../shelf/", "--music", "../Music/."});
    fs::current_path(before);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(HasEntry("shelf/host.ini", "D=" + Folder().string()));
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "LibraryRoot=D:\\Music"));
}

TEST_F(InitCommand, RefersToAnExistingDatabaseWhereItIs) {
    MakeFolder("Music");
    MakeFolder("data/jukebox");
    CreateJukeboxDatabase(Path("data/jukebox/cdj.mdb"));
    const std::string before = Read("data/jukebox/cdj.mdb");
    MakeFolder("elsewhere/Music");
    const ProgramResult result = Init({"--music", Path("elsewhere/Music").string(), "--database",
                                       Path("data/jukebox/cdj.mdb").string()});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(HasEntry("shelf/host.ini", "J=" + Path("data/jukebox").string()));
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "Nirvis_CDJ_DB=J:\\cdj.mdb"));
    EXPECT_FALSE(fs::exists(Path("shelf/jukebox.mdb")));
    EXPECT_EQ(Read("data/jukebox/cdj.mdb"), before);
}

TEST_F(InitCommand, GivesTheMusicThePathsThatAnExistingDatabaseHas) {
    MakeFolder("srv/jukebox/music/Alder/Dawn");
    Write("srv/jukebox/music/Alder/Dawn/01.mp3", "x");
    CreateDatabaseWithTrack("E:\\Jukebox\\Music\\Alder\\Dawn\\01.mp3");
    const ProgramResult result =
        Init({"--music", Path("srv/jukebox/music"), "--database", Path("cdj.mdb")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "LibraryRoot=E:\\Jukebox\\Music"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "E=" + Path("srv").string()));
    EXPECT_EQ(result.out.find("Caution"), std::string::npos);
    EXPECT_EQ(CallProgram({"check", "--host", Path("shelf")}).out.find("would remove"),
              std::string::npos);
}

TEST_F(InitCommand, KeepsNetworkPathsOfAnExistingDatabase) {
    MakeFolder("music/Alder");
    Write("music/Alder_Dawn.mp3", "x");
    CreateDatabaseWithTrack("\\\\nas\\music\\Alder_Dawn.mp3");
    ASSERT_EQ(Init({"--music", Path("music"), "--database", Path("cdj.mdb")}).status, 0);
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "LibraryRoot=\\\\nas\\music"));
    EXPECT_TRUE(HasEntry("shelf/host.ini", "\\\\NAS\\MUSIC=" + Path("music").string()))
        << Read("shelf/host.ini");
}

TEST_F(InitCommand, WarnsWhenTheDatabasesPathsCannotBeKept) {
    MakeFolder("songs/Alder");
    Write("songs/Alder/01.mp3", "x");
    CreateDatabaseWithTrack("E:\\Music\\Alder\\01.mp3");
    const ProgramResult result = Init({"--music", Path("songs"), "--database", Path("cdj.mdb")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("Caution: the database has its tracks in E:\\Music."),
              std::string::npos)
        << result.out;
    EXPECT_TRUE(HasEntry("shelf/Quillon.ini", "LibraryRoot=D:\\songs"));
}

TEST_F(InitCommand, RefusesAFileThatIsNoDatabase) {
    MakeFolder("Music");
    Write("cdj.mdb", "no database");
    EXPECT_EQ(Init({"--music", Path("Music"), "--database", Path("cdj.mdb")}).status, 2);
    EXPECT_FALSE(fs::exists(Path("shelf")));
}

TEST_F(InitCommand, OverwritesNothingAndSaysWhatIsThere) {
    MakeFolder("Music");
    MakeFolder("shelf");
    Write("shelf/host.ini", "mine");
    Write("shelf/jukebox.mdb", "mine too");
    Write("shelf/Covers", "a file where a folder belongs");
    const ProgramResult result = Init({"--music", Path("Music").string()});
    EXPECT_EQ(result.status, 2);
    for (const char* const name : {"shelf/host.ini", "shelf/jukebox.mdb", "shelf/Covers"})
        EXPECT_NE(result.err.find(Path(name).string()), std::string::npos) << result.err;
    EXPECT_EQ(Read("shelf/host.ini"), "mine");
    EXPECT_EQ(Read("shelf/jukebox.mdb"), "mine too");
    EXPECT_EQ(std::distance(fs::directory_iterator(Path("shelf")), {}), 3);
}

TEST_F(InitCommand, CalledTwiceItRefusesAndLeavesTheFirst) {
    MakeFolder("Music");
    ASSERT_EQ(Init({"--music", Path("Music").string()}).status, 0);
    const std::string settings = Read("shelf/Quillon.ini"), host = Read("shelf/host.ini"),
                      database = Read("shelf/jukebox.mdb");
    EXPECT_EQ(Init({"--music", Path("Music").string(), "--layout", "flat"}).status, 2);
    EXPECT_EQ(Read("shelf/Quillon.ini"), settings);
    EXPECT_EQ(Read("shelf/host.ini"), host);
    EXPECT_EQ(Read("shelf/jukebox.mdb"), database);
}

TEST_F(InitCommand, UsesFoldersThatAreThereAlready) {
    MakeFolder("Music");
    MakeFolder("shelf/Playlists");
    Write("shelf/Playlists/old.pla", "kept");
    Write("shelf/unrelated.txt", "kept");
    EXPECT_EQ(Init({"--music", Path("Music").string()}).status, 0);
    EXPECT_EQ(Read("shelf/Playlists/old.pla"), "kept");
    EXPECT_EQ(Read("shelf/unrelated.txt"), "kept");
}

TEST_F(InitCommand, NeedsTheMusicFolderAndTheDatabaseToExist) {
    const ProgramResult noMusic = Init({"--music", Path("nowhere").string()});
    EXPECT_EQ(noMusic.status, 2);
    EXPECT_NE(noMusic.err.find(Path("nowhere").string()), std::string::npos);

    MakeFolder("Music");
    const ProgramResult noDatabase =
        Init({"--music", Path("Music").string(), "--database", Path("none.mdb").string()});
    EXPECT_EQ(noDatabase.status, 2);
    EXPECT_NE(noDatabase.err.find(Path("none.mdb").string()), std::string::npos);

    EXPECT_EQ(Init({"--music", "/"}).status, 2);
    EXPECT_FALSE(fs::exists(Path("shelf"))) << "nothing is made";
}

TEST_F(InitCommand, LeavesNothingBehindWhenItFailsHalfWay) {
    MakeFolder("Music");
    MakeFolder("shelf");
    fs::create_symlink(Path("no such folder") / "x", Path("shelf/M3u"));
    EXPECT_EQ(Init({"--music", Path("Music").string()}).status, 2);
    EXPECT_EQ(std::distance(fs::directory_iterator(Path("shelf")), {}), 1) << "the link alone";
}

TEST_F(InitCommand, RefusesAMusicFolderThatWindowsCouldNotName) {
    MakeFolder("Mu|sic");
    const ProgramResult result = Init({"--music", Path("Mu|sic").string()});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("Mu|sic"), std::string::npos);
    EXPECT_FALSE(fs::exists(Path("shelf")));
}

}  // namespace
}  // namespace quillon
