#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

#include "tests/app/check_fixture.h"
#include "tests/outside/child_process.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class CheckCommand : public CheckFixture {};

TEST_F(CheckCommand, FindsANewHostFolderReady) {
    const ProgramResult result = Check();
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_TRUE(result.out.ends_with("\n\nA run could start.\n"));
    EXPECT_EQ(Problems(), "");
    EXPECT_EQ(Cautions(), "");
}

TEST_F(CheckCommand, EndsWithAVerdictThatCountsWhatItFound) {
    Set("PickerMinimum", "0");
    EXPECT_TRUE(Check().out.ends_with("\n\nA run could start; 1 thing is worth a look first.\n"));
    Set("MaxPlaylistLength", "0");
    EXPECT_TRUE(Check().out.ends_with("; 2 things are worth a look first.\n"));
    Set("Reconcile", "0");
    EXPECT_TRUE(Check().out.ends_with("\n\nNo run could do its work: 1 problem.\n"));
    Set("ImagesWide", "x");
    EXPECT_TRUE(Check().out.ends_with("\n\nNo run could do its work: 2 problems.\n"));
}

TEST_F(CheckCommand, TellsAllProblemsAtOnce) {
    Set("ImagesHigh", "abc");
    Set("PickerFormatOption", "maybe");
    Set("Nirvis_CDJ_DB", "H:\\nowhere.mdb");
    Set("LibraryRoot", "D:\\Nowhere");
    Write("shelf/host.ini", "[Plugins]\nQuillon=0\n[Drives]\nD=" + Folder().string() + "\nH=.\n");
    EXPECT_EQ(Check().status, 2);
    const std::string problems = Problems();
    EXPECT_EQ(std::ranges::count(problems, '\n') + 1, 5) << problems;
    EXPECT_TRUE(Has(problems, "ImagesHigh=abc is not a number")) << problems;
    EXPECT_TRUE(Has(problems, "PickerFormatOption=maybe is not 0 or 1")) << problems;
    EXPECT_TRUE(Has(problems, "nowhere.mdb is not there")) << problems;
    EXPECT_TRUE(Has(problems, "LibraryRoot (D:\\Nowhere) is not there")) << problems;
    EXPECT_TRUE(Has(problems, "Quillon=1 in [Plugins]")) << problems;
}

TEST_F(CheckCommand, KeepsFindingsWithin80Columns) {
    Set("MaxPlaylistLength", "-1");
    Set("AddFiles", "1");
    Set("FromFilesPath", "D:\\Music");
    std::istringstream lines(Check().out);
    std::size_t seen = 0;
    bool inFindings = false;
    for (std::string line; std::getline(lines, line);) {
        inFindings = inFindings || line == "Problems";
        if (!inFindings) continue;
        ++seen;
        EXPECT_LE(line.size(), 80U) << line;
    }
    EXPECT_GT(seen, 8U);
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
    EXPECT_TRUE(Has(Cautions(),
                    "Keep in [Removed] of host.ini is \"perhaps\", which is neither yes nor no"));
}

TEST_F(CheckCommand, TellsWhatCountsAsADuplicate) {
    EXPECT_TRUE(Has(Check().out, "\nDuplicates       only files with the same sound, byte"));
    const std::string host = Read("shelf/host.ini");
    for (const char* const line : {"OnlyIdentical=0", "; absent"}) {
        std::string changed = host;
        Write("shelf/host.ini", changed.replace(changed.find("\nOnlyIdentical=1") + 1, 15, line));
        EXPECT_TRUE(
            Has(Check().out, "\nDuplicates       files with the same title (OnlyIdentical is off)"))
            << line;
    }
}

TEST_F(CheckCommand, NeedsALogThatCanBeWritten) {
    const std::string log = "Log              " + Path("shelf/host.log").string();
    EXPECT_TRUE(Has(Check().out, log + ", made by the first run\n"));
    Write("shelf/host.log", "");
    EXPECT_TRUE(Has(Check().out, log + "\n"));
    fs::remove(Path("shelf/host.log"));
    MakeFolder("shelf/host.log");
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(), "host.log cannot be written because it is not a file"));
}

TEST_F(CheckCommand, KnowsWhatTheAccountMayNotWrite) {
    Write("shelf/host.log", "");
    fs::permissions(Folder(), fs::perms::others_all, fs::perm_options::add);
    fs::permissions(Path("shelf/Playlists"), fs::perms::others_all);
    for (const char* const name : {"shelf", "shelf/jukebox.mdb", "shelf/host.log"}) {
        fs::permissions(Path(name),
                        fs::perms::others_write | fs::perms::group_write |
                            (geteuid() == 0 ? fs::perms::none : fs::perms::owner_write),
                        fs::perm_options::remove);
    }
    const std::string problems = outside::AsOrdinaryUser([this] { return Problems(); });
    EXPECT_TRUE(Has(problems, "host.log cannot be written by this account")) << problems;
    EXPECT_TRUE(Has(problems, "jukebox.mdb is read-only for this account")) << problems;
    EXPECT_TRUE(Has(problems, "folder " + Path("shelf").string() + " is read-only")) << problems;
    EXPECT_TRUE(Has(problems,
                    "H:\\jukebox.mdb cannot be backed up, because this account may not "
                    "write to"))
        << problems;

    Set("PlaylistsOnly", "1");
    fs::permissions(Path("shelf/Playlists"), fs::perms::owner_read | fs::perms::owner_exec |
                                                 fs::perms::others_read | fs::perms::others_exec);
    const std::string playlists = outside::AsOrdinaryUser([this] { return Problems(); });
    EXPECT_TRUE(Has(playlists, "Folder PlayListPath (H:\\Playlists\\) cannot be written"))
        << playlists;
    EXPECT_TRUE(Has(outside::AsOrdinaryUser([this] { return Section(Check().out, "Folders"); }),
                    "PlayListPath      read-only"));
}

TEST_F(CheckCommand, ChangesNothing) {
    const auto state = [this] {
        std::string text;
        std::vector<fs::path> paths;
        for (const auto& entry : fs::recursive_directory_iterator(Folder()))
            paths.push_back(entry.path());
        std::ranges::sort(paths);
        for (const fs::path& path : paths) {
            text += path.string() + ' ' +
                    std::to_string(fs::last_write_time(path).time_since_epoch().count()) + '\n';
            if (fs::is_regular_file(path)) text += Read(fs::relative(path, Folder()).string());
        }
        return text;
    };
    Write("shelf/jukebox.mdb.journal", "left");
    Write("shelf/jukebox.mdb.playlists", "left");
    Write("shelf/jukebox.ldb", std::string(64, ' '));
    const std::string before = state();
    for (const char* const mode :
         {"Reconcile", "AddFiles", "ID3Write", "ID3Update", "AlbumPicker", "PlaToM3u"}) {
        const std::string settings = Read("shelf/Quillon.ini");
        const auto time = fs::last_write_time(Path("shelf/Quillon.ini"));
        Set(mode, "1");
        Check();
        Write("shelf/Quillon.ini", settings);
        fs::last_write_time(Path("shelf/Quillon.ini"), time);
        EXPECT_EQ(state(), before) << mode;
    }
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
    EXPECT_FALSE(fs::exists(Path("Music/host.log")));
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
