#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

#include "database/remove_duplicates.h"
#include "driver/library_form.h"
#include "jukebox/jukebox_database.h"
#include "platform/portable/host_folder.h"
#include "platform/portable/jet_database.h"
#include "platform/portable/path_resolver.h"
#include "platform/portable/portable_files.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/database_rows.h"
#include "tests/support/fakes.h"
#include "tests/support/open_database.h"
#include "tests/support/sound_file.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// Everything that one run of the program is made of; only clock and window are fakes.
struct Program {
    explicit Program(const fs::path& folder) : host(folder, clock), resolver(host.Drives()) {}

    RunOutcome Load() { return LibraryForm(run, databases, "1.0.0").Form_Load(); }

    fakes::Calls calls;
    fakes::FakeClock clock;
    fakes::FakeWindow window{calls};
    HostFolder host;
    PathResolver resolver;
    PortableFiles files{resolver,
                        [this](LogKind, const std::string& note) { notes.push_back(note); }};
    JetDatabaseProvider databases{resolver};
    Run run{host, files, clock, window};
    std::vector<std::string> notes;
};

/// A host folder with a library of two artists on drive D:.
class WholeRun : public ::testing::Test {
  protected:
    WholeRun() {
        fs::create_directories(folder.Path() / "disk" / "Lists");
        Write("host.ini", "[Plugins]\nQuillon=1\n[Drives]\nD=disk\n");
        Set("");
        AddSong("Ann", "First", "One");
        AddSong("Ann", "First", "Two");
        AddSong("Bob", "Second", "Three");
        CreateJukeboxDatabase(Database());
    }

    fs::path Disk() const { return folder.Path() / "disk"; }
    fs::path Database() const { return Disk() / "cdj.mdb"; }

    void Write(const fs::path& name, const std::string& content) const {
        std::ofstream(folder.Path() / name, std::ios::binary) << content;
    }

    /// The usual settings of a reconciliation and some more.
    void Set(const std::string& more) const {
        Write("Quillon.ini",
              "[NPFrame]\nLibraryRoot=D:\\Music\nNirvis_CDJ_DB=D:\\cdj.mdb\n"
              "PlayListPath=D:\\Lists\nPlayListPath2=D:\\M3u\nReconcile=1\n" +
                  more);
    }

    static std::string Content(const fs::path& path) {
        std::ostringstream content;
        content << std::ifstream(path, std::ios::binary).rdbuf();
        return content.str();
    }

    void AddSong(const std::string& artist, const std::string& album,
                 const std::string& song) const {
        const fs::path path = Disk() / "Music" / artist / album;
        fs::create_directories(path);
        support::RawTag tag;
        tag.song = song;
        tag.artist = artist;
        tag.album = album;
        std::ofstream(path / (song + ".mp3"), std::ios::binary) << support::SoundFile(tag);
    }

    RunOutcome Load() {
        Program program(folder.Path());
        const RunOutcome outcome = program.Load();
        errors = program.run.counts.errors;
        return outcome;
    }

    /// The log's messages, without time and source.
    std::vector<std::string> Log() const {
        std::ifstream file(folder.Path() / "host.log");
        std::vector<std::string> messages;
        for (std::string line; std::getline(file, line);) {
            line.erase(0, line.rfind('\t') + 1);
            messages.push_back(line);
        }
        return messages;
    }

    std::vector<std::string> Rows(std::string_view sql) const {
        const std::unique_ptr<Connection> connection = support::OpenDatabase(Database());
        return support::Rows(*connection, sql);
    }
    std::vector<std::string> Tracks() const {
        return Rows("SELECT Title, Artist, Track FROM Tracks ORDER BY Title");
    }
    std::vector<std::string> Albums() const {
        return Rows("SELECT Title, Artist, Tracks FROM Albums ORDER BY Title");
    }

    std::vector<std::string> NamesIn(const fs::path& path) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(path)) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }

    outside::TemporaryFolder folder;
    std::size_t errors = 0;
    const std::string copyOfDatabase = "cdj.mdb_Copy Dated_11152026_53855_AM_";
};

TEST_F(WholeRun, ReconcilesFoldersAndDatabase) {
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_EQ(errors, 0U);
    EXPECT_THAT(Albums(), ElementsAre("First|Ann|2", "Second|Bob|1"));
    EXPECT_EQ(Tracks().size(), 3U);
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_EQ(support::StructuralFaults(Database()), "");
}

TEST_F(WholeRun, LeavesADatedCopyOfTheDatabaseAsItWasBefore) {
    Load();
    fs::rename(Disk() / copyOfDatabase, Disk() / "before.mdb");
    EXPECT_THAT(
        support::Rows(*support::OpenDatabase(Disk() / "before.mdb"), "SELECT Title FROM Albums"),
        IsEmpty());
    EXPECT_EQ(support::StructuralFaults(Disk() / "before.mdb"), "");
}

TEST_F(WholeRun, LeavesADatedCopyOfThePlaylistFolderThatIsThere) {
    Write("disk/Lists/Rock.pla", "entries");
    Load();
    EXPECT_THAT(NamesIn(Disk()), UnorderedElementsAre("Music", "Lists", "cdj.mdb", copyOfDatabase,
                                                      "Lists_Copy Dated_11152026_53855_AM_"));
    EXPECT_THAT(NamesIn(Disk() / "Lists_Copy Dated_11152026_53855_AM_"), ElementsAre("Rock.pla"));
}

TEST_F(WholeRun, LeavesEveryNumberWhenTheLibraryRootIsNotThere) {
    Load();
    const std::vector<std::string> albums = Albums();
    const std::vector<std::string> tracks = Tracks();
    fs::rename(Disk() / "Music", Disk() / "unmounted");
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_EQ(errors, 2U);
    EXPECT_THAT(Log(), ElementsAre("Verify ID3 Tags, No folder at library root D:\\Music",
                                   "RefreshDatabase, No folder at library root D:\\Music"));
    EXPECT_EQ(Albums(), albums);
    EXPECT_EQ(Tracks(), tracks);
}

TEST_F(WholeRun, SweepsNothingWhenTheLibraryRootAppearsOnlyDuringTheRun) {
    Load();
    const std::vector<std::string> albums = Albums();
    const std::vector<std::string> tracks = Tracks();
    fs::rename(Disk() / "Music", Disk() / "unmounted");
    Program program(folder.Path());
    program.window.onEvents = [&](const FormState& state) {
        if (state.aPhase[1].selected && fs::exists(Disk() / "unmounted")) {
            fs::rename(Disk() / "unmounted", Disk() / "Music");
        }
    };
    EXPECT_EQ(program.Load(), RunOutcome::Completed);
    EXPECT_EQ(Albums(), albums);
    EXPECT_EQ(Tracks(), tracks);
}

TEST_F(WholeRun, LeavesEveryNumberWhenItIsAbortedBetweenMarkingAndWalking) {
    Load();
    const std::vector<std::string> albums = Albums();
    const std::vector<std::string> tracks = Tracks();
    for (const std::size_t phase : {2U, 3U}) {
        Program program(folder.Path());
        program.window.PressAbortWhen(fakes::PhaseIsSelected(phase));
        EXPECT_EQ(program.Load(), RunOutcome::Aborted);
        EXPECT_EQ(Albums(), albums);
        EXPECT_EQ(Tracks(), tracks);
    }
}

TEST_F(WholeRun, GivesWhatAnAbortedWalkDidNotReachItsNumbersBack) {
    Load();
    AddSong("Ann", "First", "New");
    Program program(folder.Path());
    program.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.starts_with("2. Reconcile Folder"); });
    EXPECT_EQ(program.Load(), RunOutcome::Aborted);
    EXPECT_THAT(Rows("SELECT Title FROM Albums WHERE Tracks=0"), IsEmpty());
    EXPECT_THAT(Rows("SELECT Title FROM Tracks WHERE Track=0"), IsEmpty());
    EXPECT_THAT(Albums(), ::testing::Contains("Second|Bob|1"));
    EXPECT_EQ(support::StructuralFaults(Database()), "");
}

TEST_F(WholeRun, ChangesNothingWhereABackupCannotBeMade) {
    Load();
    fs::remove(Disk() / copyOfDatabase);
    Write("disk/Lists/Rock.pla", "entries");
    const std::string before = Content(Database());
    AddSong("Cid", "Third", "Four");
    Write("Quillon.ini",
          "[NPFrame]\nLibraryRoot=D:\\Music\nNirvis_CDJ_DB=D:\\cdj.mdb\nReconcile=1\n"
          "PlayListPath=D:\\\n");
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_EQ(Content(Database()), before);
    EXPECT_EQ(Content(Disk() / "Lists" / "Rock.pla"), "entries");
    ASSERT_EQ(Log().size(), 1U);
    EXPECT_THAT(Log()[0], HasSubstr("D:\\ is a whole drive"));
}

TEST_F(WholeRun, KeepsTheCopiesOfTwoRunsOfOneSecond) {
    Write("disk/Lists/Rock.pla", "first");
    const std::string before = Content(Database());
    Load();
    const std::string between = Content(Database());
    Write("disk/Lists/Rock.pla", "second");
    Load();
    EXPECT_EQ(Content(Disk() / copyOfDatabase), before);
    EXPECT_EQ(Content(Disk() / (copyOfDatabase + "2_")), between);
    const std::string copyOfLists = "Lists_Copy Dated_11152026_53855_AM_";
    EXPECT_EQ(Content(Disk() / copyOfLists / "Rock.pla"), "first");
    EXPECT_EQ(Content(Disk() / (copyOfLists + "2_") / "Rock.pla"), "second");
}

TEST_F(WholeRun, BacksUpAFolderHoweverItIsWritten) {
    Write("disk/Lists/Rock.pla", "entries");
    for (const std::string written : {"D:/Lists/", "D:\\Lists\\\\", "D:\\\\Lists"}) {
        Write("Quillon.ini",
              "[NPFrame]\nLibraryRoot=D:\\Music\nNirvis_CDJ_DB=D:\\cdj.mdb\nM3uToPla=1\n"
              "PlayListPath=" +
                  written + "\n");
        EXPECT_EQ(Load(), RunOutcome::Completed);
        EXPECT_THAT(NamesIn(Disk() / "Lists"), ElementsAre("Rock.pla"));
        EXPECT_EQ(Content(Disk() / "Lists_Copy Dated_11152026_53855_AM_" / "Rock.pla"), "entries");
        fs::remove_all(Disk() / "Lists_Copy Dated_11152026_53855_AM_");
    }
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WholeRun, OpensADatabaseWhosePathHoldsMarksOfConnectionStrings) {
    for (const std::string name : {"a;b.mdb", "it's; mine.mdb", "x=y;Data Source=z.mdb"}) {
        fs::rename(Database(), Disk() / name);
        for (const std::string mode : {"Reconcile", "AlbumPicker"}) {
            Write("Quillon.ini", "[NPFrame]\nLibraryRoot=D:\\Music\nNirvis_CDJ_DB=D:\\" + name +
                                     "\n" + mode + "=1\nPlayListPath=D:\\Lists\n");
            EXPECT_EQ(Load(), RunOutcome::Completed) << name;
            EXPECT_THAT(Log(), IsEmpty()) << name;
        }
        fs::rename(Disk() / name, Database());
        EXPECT_EQ(Tracks().size(), 3U);
    }
}

TEST(LibraryConnectionString, HoldsThePathAsItStandsWhereverThatIsClear) {
    EXPECT_EQ(LibraryConnectionString(R"(D:\O'Brien's\cdj.mdb)"),
              R"(Provider = Microsoft.Jet.OLEDB.4.0; Data Source=D:\O'Brien's\cdj.mdb)");
    for (const std::string path : {R"(D:\a;b.mdb)", R"('quoted'.mdb)", R"("a";b)"})
        EXPECT_EQ(ParseConnectionString(LibraryConnectionString(path)).dataSource, path);
}

TEST_F(WholeRun, WalksFoldersThatATextFileNames) {
    // 0xE9 is an e with acute accent in the code page of settings and lists.
    fs::create_directories(Disk() / "Caf\u00e9" / "Cid" / "Third");
    std::ofstream(Disk() / "Caf\u00e9" / "Cid" / "Third" / "Four.mp3", std::ios::binary)
        << support::UntaggedSoundFile();
    Write("disk/Music/more.txt", "D:\\Nowhere\r\nD:\\Caf\xE9\r\n?<>|\r\nQ:\\Unmapped");
    Set("LibraryDepthOption=1\n");
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_THAT(Rows("SELECT SoundFile FROM Tracks WHERE Artist=\"Cid\""),
                ElementsAre("D:\\Caf\u00e9\\Cid\\Third\\Four.mp3"));
}

TEST_F(WholeRun, EndsWithOneRecordWhenTheDatabaseIsNotThere) {
    fs::remove(Database());
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    ASSERT_EQ(Log().size(), 1U);
    EXPECT_TRUE(Log()[0].starts_with("QuillonShelfkeeper Main Line 0 ")) << Log()[0];
    EXPECT_THAT(Log()[0], HasSubstr("cdj.mdb"));
    EXPECT_FALSE(fs::exists(Database()));
}

TEST_F(WholeRun, EndsWithOneRecordWhenTheDatabaseIsNone) {
    for (const std::string& content : {std::string(), std::string(10'000, 'x')}) {
        fs::remove(folder.Path() / "host.log");
        Write("disk/cdj.mdb", content);
        EXPECT_EQ(Load(), RunOutcome::NothingRan);
        ASSERT_EQ(Log().size(), 1U);
        EXPECT_TRUE(Log()[0].starts_with("QuillonShelfkeeper Main Line 0 ")) << Log()[0];
        EXPECT_THAT(NamesIn(Disk()), UnorderedElementsAre("Music", "Lists", "cdj.mdb"));
    }
}

TEST_F(WholeRun, EndsWithOneRecordWhenAGenreNumberIsOutOfRange) {
    support::OpenDatabase(Database())
        ->Execute("INSERT INTO SpinnerGenre (GenreID, Genre) VALUES (256, 'Odd')");
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_THAT(Log(), ElementsAre("QuillonShelfkeeper Main Line 0 Subscript out of range: "
                                   "SpinnerGenre, GenreID 256"));
    EXPECT_THAT(Albums(), IsEmpty());
}

TEST_F(WholeRun, EndsWithOneRecordWithoutThePlugin) {
    Write("host.ini", "[Plugins]\nQuillon=0\n[Drives]\nD=disk\n");
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_THAT(Log(), ElementsAre("Quillon must be enabled to perform management activities"));
    EXPECT_THAT(NamesIn(Disk()), UnorderedElementsAre("Music", "Lists", "cdj.mdb"));
}

TEST_F(WholeRun, EndsWithOneRecordForAStrictSetting) {
    Set("ImagesHigh = three\n");
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_THAT(Log(),
                ElementsAre("QuillonShelfkeeper Load Line 0 Type mismatch: ImagesHigh=three"));
}

TEST_F(WholeRun, DoesNothingWithoutASettingsFile) {
    fs::remove(folder.Path() / "Quillon.ini");
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_THAT(NamesIn(Disk()), UnorderedElementsAre("Music", "Lists", "cdj.mdb"));
}

}  // namespace
}  // namespace quillon
