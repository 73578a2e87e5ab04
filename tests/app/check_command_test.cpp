#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

#include "jet/database.h"
#include "tests/app/temporary_folder.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class CheckCommand : public TemporaryFolder {
  protected:
    CheckCommand() {
        MakeFolder("Music");
        CallProgram({"init", Path("shelf"), "--music", Path("Music")});
    }
    ProgramResult Check() const { return CallProgram({"check", "--host", Path("shelf")}); }

    /// Puts a value in the place of the one that init wrote.
    void Set(const std::string& key, const std::string& value) const {
        std::string settings = Read("shelf/Quillon.ini");
        const std::size_t start = settings.find("\n" + key + "=") + key.size() + 2;
        settings.replace(start, settings.find('\n', start) - start, value);
        Write("shelf/Quillon.ini", settings);
    }
    void Execute(const std::string& sql) const {
        const ProgramResult result = CallProgram({"db", "exec", Path("shelf/jukebox.mdb"), sql});
        ASSERT_EQ(result.status, 0) << result.err;
    }
};

/// The lines behind a heading, up to the next blank line.
std::string Section(const std::string& out, const std::string& heading) {
    const std::size_t start = out.find("\n" + heading + "\n");
    if (start == std::string::npos) return "";
    const std::size_t lines = start + heading.size() + 2;
    return out.substr(lines, out.find("\n\n", lines) - lines);
}

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(CheckCommand, FindsANewHostFolderReady) {
    const ProgramResult result = Check();
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_TRUE(result.out.ends_with("\nA run could start.\n"));
    EXPECT_EQ(Section(result.out, "Problems"), "");
    EXPECT_EQ(Section(result.out, "Worth a look"), "");
}

TEST_F(CheckCommand, TellsEverySettingAndWhereItsValueComesFrom) {
    Set("ImagesWide", "7");
    Write("shelf/Quillon.ini",
          Read("shelf/Quillon.ini")
              .replace(Read("shelf/Quillon.ini").find("\nGenrePlaylist=1"), 16, ""));
    const std::string settings = Section(Check().out, "Settings (Quillon.ini, section NPFrame)");
    EXPECT_EQ(std::ranges::count(settings, '\n') + 1, 33);
    EXPECT_TRUE(Has(settings, "  ImagesWide             7                              file\n"));
    EXPECT_TRUE(Has(settings, "  GenrePlaylist          True                           default\n"));
    EXPECT_TRUE(Has(settings, "  LibraryRoot            D:\\Music                       file\n"));
}

TEST_F(CheckCommand, TellsTheHostsOwnSettings) {
    EXPECT_EQ(Section(Check().out, "Host settings (host.ini)"),
              "  Download Host          localhost\n"
              "  Covers ScanLibrary     False\n"
              "  Covers ReservedFolder  (empty)");
}

TEST_F(CheckCommand, CautionsAgainstADownloadHostWithAHyphen) {
    Write("shelf/host.ini", "[Plugins]\nQuillon=1\n[Drives]\nD=" + Folder().string() +
                                "\nH=.\n[Download]\nHost=my-radio\n"
                                "[Covers]\nScanLibrary=yes\nReservedFolder=Scans\n");
    const ProgramResult result = Check();
    EXPECT_EQ(Section(result.out, "Host settings (host.ini)"),
              "  Download Host          my-radio\n"
              "  Covers ScanLibrary     True\n"
              "  Covers ReservedFolder  Scans");
    EXPECT_TRUE(Has(Section(result.out, "Worth a look"), "Host my-radio of [Download]"));
    EXPECT_EQ(result.status, 0);
}

TEST_F(CheckCommand, TellsTheModeItsBackupsAndItsPhases) {
    const std::string plan = Section(Check().out, "A run would do");
    EXPECT_TRUE(plan.starts_with("  Reconcile library and database\n")) << plan;
    EXPECT_TRUE(Has(plan, "Backups first: H:\\jukebox.mdb, H:\\Playlists\\, H:\\M3u\\\n")) << plan;
    EXPECT_TRUE(Has(plan, "\n    Add folder tracks to library\n")) << plan;
    // It renames files, so a new host folder has it switched off.
    EXPECT_FALSE(Has(plan, "Verify ID3")) << plan;

    Set("ID3Reconcile", "1");
    EXPECT_TRUE(Has(Section(Check().out, "A run would do"), "\n    Verify ID3\n"));
}

TEST_F(CheckCommand, TellsWhetherRemovedMusicIsKept) {
    const std::string kept = "Removed music    kept in " + Path("shelf/Removed").string() + "\n";
    EXPECT_TRUE(Has(Check().out, kept)) << Check().out;
    const std::string host = Read("shelf/host.ini");
    const auto setKeep = [&](const std::string& value) {
        std::string changed = host;
        changed.replace(changed.find("Keep=1"), 6, "Keep=" + value);
        Write("shelf/host.ini", changed);
    };
    for (const char* const no : {"0", "no", "OFF", "False"}) {
        setKeep(no);
        EXPECT_TRUE(Has(Check().out, "Removed music    deleted for good\n")) << no;
    }
    setKeep("perhaps");
    const ProgramResult result = Check();
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(Has(result.out, kept));
    EXPECT_TRUE(Has(Section(result.out, "Worth a look"),
                    "Keep in [Removed] of host.ini is \"perhaps\", which is neither yes nor no"));
}

TEST_F(CheckCommand, TellsAllProblemsAtOnce) {
    Set("ImagesHigh", "abc");
    Set("PickerFormatOption", "maybe");
    Set("Nirvis_CDJ_DB", "H:\\nowhere.mdb");
    Set("LibraryRoot", "D:\\Nowhere");
    Write("shelf/host.ini", "[Plugins]\nQuillon=0\n[Drives]\nD=" + Folder().string() + "\nH=.\n");
    const ProgramResult result = Check();
    EXPECT_EQ(result.status, 2);
    const std::string problems = Section(result.out, "Problems");
    EXPECT_EQ(std::ranges::count(problems, '\n') + 1, 5) << problems;
    EXPECT_TRUE(Has(problems, "ImagesHigh is \"abc\": Type mismatch")) << problems;
    EXPECT_TRUE(Has(problems, "PickerFormatOption is \"maybe\": Type mismatch")) << problems;
    EXPECT_TRUE(Has(problems, "nowhere.mdb")) << problems;
    EXPECT_TRUE(Has(problems, "LibraryRoot (D:\\Nowhere): is not there")) << problems;
    EXPECT_TRUE(Has(problems, "Quillon=1 in [Plugins]")) << problems;
}

TEST_F(CheckCommand, ASettingThatCountsAsSomethingElseIsNoProblem) {
    Set("ArtistThreshold", "abc");
    Set("RandomizePlaylist", "yes");
    const ProgramResult result = Check();
    EXPECT_EQ(result.status, 0) << result.out;
    const std::string cautions = Section(result.out, "Worth a look");
    EXPECT_TRUE(Has(cautions, "ArtistThreshold is \"abc\": Type mismatch: counts as 0"))
        << cautions;
    EXPECT_TRUE(Has(cautions, "RandomizePlaylist is \"yes\"")) << cautions;
}

TEST_F(CheckCommand, NeedsAModeThatThisVersionHas) {
    Set("Reconcile", "0");
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Section(Check().out, "Problems"), "No mode is chosen"));
}

TEST_F(CheckCommand, ReportsFoldersThatAreMissing) {
    fs::remove(Path("shelf/Covers"));
    fs::remove(Path("shelf/Data"));
    const ProgramResult result = Check();
    EXPECT_EQ(result.status, 0) << "a reconciliation can do without";
    const std::string cautions = Section(result.out, "Worth a look");
    EXPECT_TRUE(Has(cautions, "AlbumCoverFolder (H:\\Covers\\): is not there")) << cautions;
    EXPECT_TRUE(Has(cautions, "Data (H:\\Data): is not there")) << cautions;

    Set("PlayListPath", "Q:\\Lists");
    EXPECT_TRUE(Has(Section(Check().out, "Worth a look"), "PlayListPath (Q:\\Lists\\): "));
}

TEST_F(CheckCommand, APlaylistsOnlyRunNeedsNoMusicFolder) {
    Set("PlaylistsOnly", "1");
    Set("LibraryRoot", "D:\\Nowhere");
    const ProgramResult result = Check();
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_TRUE(Has(Section(result.out, "A run would do"), "playlists only"));
}

TEST_F(CheckCommand, NamesTablesAndFieldsThatTheDatabaseLacks) {
    fs::remove(Path("shelf/jukebox.mdb"));
    const std::vector<jet::TableDefinition> tables{
        {"Albums", {{.name = "CDJID", .type = jet::ColumnType::Text, .size = 20}}, {}}};
    jet::Database::Create(Path("shelf/jukebox.mdb"), tables);
    const ProgramResult result = Check();
    EXPECT_EQ(result.status, 2);
    const std::string problems = Section(result.out, "Problems");
    EXPECT_TRUE(Has(problems, "Table Albums has no field Title")) << problems;
    EXPECT_TRUE(Has(problems, "The database has no table Tracks")) << problems;
    EXPECT_TRUE(Has(problems, "The database has no table SpinnerGenre")) << problems;
}

TEST_F(CheckCommand, RefusesAGenreNumberThatWouldStopTheStartUp) {
    Execute("INSERT INTO SpinnerGenre (GenreID, Genre) VALUES (256, 'Too much')");
    const ProgramResult result = Check();
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(Has(Section(result.out, "Problems"), "SpinnerGenre"));
}

TEST_F(CheckCommand, WarnsWhenTheDatabaseKnowsTheMusicByOtherPaths) {
    Execute("INSERT INTO Albums (CDJID, Title, Artist, Player) VALUES ('1', 'T', 'A', 1001)");
    Execute("INSERT INTO Tracks (CDJID, Track, SoundFile) VALUES ('1', 1, 'E:\\Old\\A\\T\\x.mp3')");
    const ProgramResult elsewhere = Check();
    EXPECT_TRUE(Has(Section(elsewhere.out, "Worth a look"), "would remove"));
    Execute("UPDATE Tracks SET SoundFile='d:\\MUSIC\\A\\T\\x.mp3'");
    EXPECT_EQ(Section(Check().out, "Worth a look"), "");
}

TEST_F(CheckCommand, SeesThatTheDatabaseIsOpenElsewhere) {
    const auto entry = [](std::string machine, std::string user) {
        machine.resize(32, ' ');
        user.resize(32, ' ');
        return machine + user;
    };
    Write("shelf/jukebox.ldb", entry("JUKEBOX-PC", "Admin"));
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Section(Check().out, "Problems"), "jukebox.ldb is there"));

    Write("shelf/jukebox.ldb", entry("HERE", "Quillon"));
    EXPECT_EQ(Check().status, 0) << "a run takes over what a killed run has left";
    EXPECT_TRUE(Has(Section(Check().out, "Worth a look"), "jukebox.ldb is there"));
    Write("shelf/jukebox.ldb", "");
    EXPECT_EQ(Section(Check().out, "Worth a look"), "");
}

TEST_F(CheckCommand, ChangesNothing) {
    const auto state = [this] {
        std::string text;
        std::vector<fs::path> paths;
        for (const auto& entry : fs::recursive_directory_iterator(Folder()))
            paths.push_back(entry.path());
        std::ranges::sort(paths);
        for (const fs::path& path : paths) {
            text += path.string() + '\n';
            if (fs::is_regular_file(path)) text += Read(fs::relative(path, Folder()).string());
        }
        return text;
    };
    const std::string before = state();
    Check();
    EXPECT_EQ(state(), before);
}

TEST_F(CheckCommand, RefusesAFolderThatIsNoHostFolder) {
    const std::vector<std::vector<std::string>> commands{
        {"check"}, {"run"}, {"run", "--view", "plain"}};
    for (std::vector<std::string> words : commands) {
        words.insert(words.end(), {"--host", Path("Music")});
        const ProgramResult result = CallProgram(words);
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(Has(result.err, Path("Music").string() + " has no Quillon.ini and no host.ini"))
            << result.err;
        EXPECT_TRUE(Has(result.err, "quillon init")) << result.err;
    }
    EXPECT_TRUE(fs::is_empty(Path("Music"))) << "no log either";
    EXPECT_EQ(CallProgram({"check", "--host", Path("nowhere")}).status, 2);

    fs::remove(Path("shelf/host.ini"));
    EXPECT_TRUE(Has(Check().err, " has no host.ini"));
}

TEST_F(CheckCommand, AWindowIsRefusedBeforeAnythingRuns) {
    const ProgramResult result = CallProgram({"run", "--host", Path("shelf"), "--view", "window"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(Has(result.err, "--view window: there is no desktop window in this installation"))
        << result.err;
    EXPECT_FALSE(fs::exists(Path("shelf/host.log")));
}

}  // namespace
}  // namespace quillon
