// What a run that ends between the capture and the refresh leaves behind, and what the next one
// makes of it.

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

#include "playlists/playlist_snapshot.h"
#include "tests/outside/child_process.h"
#include "tests/outside/posix_test.h"
#include "tests/playlists/playlist_fixture.h"
#include "tests/support/real_library.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class InterruptedTest : public PlaylistTest {
  protected:
    InterruptedTest() {
        run().settings.GenrePlaylist = false;
        run().settings.ArtistPlaylist = false;
        AddList("Mine.pla", {"A0 0", "A0 2"});
        CapturePlaylists(run());
        // The songs of the album in another order; then the run ends.
        Renumber("One", 2);
        Renumber("Two", 3);
        Renumber("Three", 1);
        NextRun();
    }

    void CaptureAndRefresh() {
        CapturePlaylists(run());
        RefreshPlaylist(run());
    }

    bool SnapshotExists() { return library.files.FileExists(Snapshot); }
};

TEST_F(InterruptedTest, LeavesASnapshotThatTheNextRunUses) {
    ASSERT_TRUE(SnapshotExists());
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 1", "A0 0"));
    EXPECT_THAT(library.host.log, Contains("Quillon: An earlier run was interrupted; playlists "
                                           "taken as it had captured them: 1"));
    EXPECT_FALSE(SnapshotExists());
}

TEST_F(InterruptedTest, MayHappenAgainAndAgain) {
    CapturePlaylists(run());
    Renumber("Three", 9);
    NextRun();
    CapturePlaylists(run());
    NextRun();
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 1", "A0 8"));
}

TEST_F(InterruptedTest, SaysNothingWhereNothingHadChanged) {
    Renumber("One", 1);
    Renumber("Two", 2);
    Renumber("Three", 3);
    CaptureAndRefresh();
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_FALSE(SnapshotExists());
}

TEST_F(InterruptedTest, CountsForFilesWhoseContentIsTheSameWhateverTheirTime) {
    const std::string content = List("Mine.pla");
    library.files.AddFile(R"(D:\Lists\Mine.pla)", content, MakeDateTime(2030, 1, 1));
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 1", "A0 0"));
}

/// Whoever changed it since meant the songs as they are numbered now.
TEST_F(InterruptedTest, DoesNotCountForAFileThatWasChangedSince) {
    AddList("Mine.pla", {"A0 2", "A0 0"});
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 2", "A0 0"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(InterruptedTest, DoesNotCountForAFileOfAnotherName) {
    AddList("Other.pla", {"A0 0", "A0 2"});
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Other.pla"), ElementsAre("A0 0", "A0 2"));
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 1", "A0 0"));
}

TEST_F(InterruptedTest, DropsSongsThatTheInterruptedRunHadRemoved) {
    library.Execute("DELETE * FROM Tracks WHERE Title='One'");
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(library.host.log, Contains("Quillon: Playlist Mine.pla, A0 0 removed because Track "
                                           "ID no longer exists"));
}

TEST_F(InterruptedTest, DoesNotCountForADatabaseThatWasReplaced) {
    library.Execute(R"(UPDATE Tracks SET SoundFile='E:\else\' & Title)");
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0", "A0 2"));
}

/// A run before had renamed the file by its tag, or another has given all paths another drive.
TEST_F(InterruptedTest, CountsForRowsWhosePathsAreOthersSince) {
    library.Execute(
        "UPDATE Tracks SET SoundFile='D:\\Music\\A0\\Ann - ' & Title & '.mp3' "
        "WHERE Title='One'");
    library.Execute(
        "UPDATE Tracks SET SoundFile='\\\\nas\\music\\Music\\A0\\' & Title & '.mp3' "
        "WHERE Title='Three'");
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 1", "A0 0"));
}

/// One row that is another song costs no other entry its song.
TEST_F(InterruptedTest, CountsForEachEntryByItself) {
    library.Execute(R"(UPDATE Tracks SET SoundFile='E:\else\x.mp3' WHERE Title='Three')");
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 1", "A0 2"))
        << "the one by its row, the other by its line";
}

TEST_F(InterruptedTest, GoesByTheFilesWhereTheSnapshotIsDamaged) {
    const std::string text = library.files.Content(Snapshot);
    library.files.AddFile(Snapshot, text.substr(0, text.size() / 2));
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0", "A0 2"));
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: Playlist snapshot is damaged, nothing is taken from it: )"
                            R"(D:\Data\jukebox.mdb.playlists)"));
    EXPECT_FALSE(SnapshotExists());
}

/// It says what the lists mean, so neither they nor it may become others.
TEST_F(InterruptedTest, TouchesNothingWhereTheSnapshotCannotBeRead) {
    library.calls.Refuse(std::string("OpenText ") + Snapshot, FailureNumber::PermissionDenied, "x");
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0", "A0 2"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Capture Playlists Error: Line 3 Permission denied: x"));
    EXPECT_TRUE(SnapshotExists());
    library.calls = {};
    NextRun();
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 1", "A0 0"));
}

TEST_F(InterruptedTest, StaysRecoverableForAListThatCouldNotBeRepaired) {
    AddList("Before.pla", {"A0 0", ""});
    library.calls.Refuse(R"(CreateText D:\Lists\Mine.pla)", FailureNumber::DiskFull, "full");
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Before.pla"), ElementsAre("A0 0"));
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 0", "A0 2"));
    EXPECT_TRUE(SnapshotExists());
    NextRun();
    library.calls = {};
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 1", "A0 0"));
    EXPECT_THAT(Lines("Before.pla"), ElementsAre("A0 0"));
    EXPECT_FALSE(SnapshotExists());
}

TEST_F(InterruptedTest, StaysRecoverableThroughAnAbortedCapture) {
    library.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem == "2. Capture Existing Playlists"; });
    CapturePlaylists(run());
    EXPECT_TRUE(SnapshotExists());
}

TEST_F(InterruptedTest, LeavesNothingWhenItsPlaylistsAreGone) {
    library.files.DeleteFile(R"(D:\Lists\Mine.pla)");
    AddList("Other.pla", {"A0 0"});
    CaptureAndRefresh();
    EXPECT_FALSE(SnapshotExists());
}

/// As where their drive is not mounted.
TEST_F(InterruptedTest, StaysRecoverableWhileTheFolderIsEmptyOrNotThere) {
    const std::string content = List("Mine.pla");
    library.files.DeleteFile(R"(D:\Lists\Mine.pla)");
    CaptureAndRefresh();
    library.files.DeleteFolder(R"(D:\Lists)");
    NextRun();
    CaptureAndRefresh();
    EXPECT_TRUE(SnapshotExists());
    library.files.AddFile(R"(D:\Lists\Mine.pla)", content);
    NextRun();
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 1", "A0 0"));
    EXPECT_FALSE(SnapshotExists());
}

TEST_F(InterruptedTest, CostsNoMoreThanTheSnapshotWhenThatCannotBeWritten) {
    RefreshPlaylist(run());
    library.calls.Refuse(std::string("CreateText ") + Snapshot, FailureNumber::DiskFull, "full");
    AddList("Mine.pla", {"A0 0"});
    NextRun();
    CapturePlaylists(run());
    Renumber("Three", 7);
    RefreshPlaylist(run());
    EXPECT_THAT(Lines("Mine.pla"), ElementsAre("A0 6"));
    EXPECT_THAT(library.host.log, Contains(HasSubstr("Capture Playlists Error: Line 6 Disk full")));
}

TEST_F(InterruptedTest, KeepsNamesThatTheCodePageDoesNotHave) {
    AddList("Пе сни% 1.pla", {"A0 0"});
    CapturePlaylists(run());
    NextRun();
    Renumber("Three", 5);
    CaptureAndRefresh();
    EXPECT_THAT(Lines("Пе сни% 1.pla"), ElementsAre("A0 4"));
}

/// A library in which a run renumbers and removes, killed before each of its database statements in
/// turn. Whatever the moment, the next run leaves each list with the songs it had.
class KilledRunTest : public ::testing::Test {
  protected:
    static void Prepare(support::RealLibrary& library) {
        library.run.settings.PlayListPath = R"(D:\Lists\)";
        library.run.settings.GenrePlaylist = false;
        library.run.settings.ArtistPlaylist = false;
        std::filesystem::create_directory(library.Folder() / "Lists");
        library.AddFile(R"(Blue\One\a.mp3)", 3);
        library.AddFile(R"(Blue\One\b.mp3)", 2);
        library.AddFile(R"(Blue\One\c.mp3)", 1);
        library.AddFile(R"(Red\Old\a.mp3)", 1);
        library.Reconcile();
        library.Reconcile();
        // Numbers that the next walk takes apart again.
        library.Database().Execute("UPDATE Tracks SET Track = Track Mod 3 + 1");
        library.Database().Flush();
        std::filesystem::remove_all(library.Music(R"(Red\Old)"));
        WriteList(library);
    }

    /// Songs c, a and the one that goes, by their present numbers.
    static void WriteList(support::RealLibrary& library) {
        std::ofstream list(library.Folder() / "Lists" / "Mine.pla", std::ios::binary);
        list << "CDJ Playlist V1.1\r\n";
        for (const char* song : {"c", "a"}) {
            for (const std::string& row :
                 library.Rows("SELECT CDJID, Track - 1 FROM Tracks WHERE SoundFile="
                              "'D:\\Music\\Blue\\One\\" +
                              std::string(song) + ".mp3'"))
                list << row.substr(0, row.find('|')) << ' ' << row.substr(row.find('|') + 1)
                     << "\r\n";
        }
        for (const std::string& row :
             library.Rows("SELECT CDJID, Track - 1 FROM Tracks WHERE SoundFile Like '%Old%'"))
            list << row.substr(0, row.find('|')) << ' ' << row.substr(row.find('|') + 1) << "\r\n";
    }

    /// The songs that the list names, by the numbers that the database has now.
    static std::vector<std::string> Songs(support::RealLibrary& library) {
        std::ifstream list(library.Folder() / "Lists" / "Mine.pla", std::ios::binary);
        std::vector<std::string> songs;
        std::string line;
        for (std::getline(list, line); std::getline(list, line);) {
            const std::size_t blank = line.find(' ');
            for (const std::string& row : library.Rows(
                     "SELECT SoundFile FROM Tracks WHERE CDJID='" + line.substr(0, blank) +
                     "' AND Track=" + std::to_string(std::stoi(line.substr(blank + 1)) + 1)))
                songs.push_back(row);
        }
        return songs;
    }

    static void Reconcile(support::RealLibrary& library) {
        library.run.ForgetTables();
        BuildORsRecordset(library.run);
        CapturePlaylists(library.run);
        library.Database().Flush();
        library.Reconcile();
        library.Database().Flush();
        RefreshPlaylist(library.run);
    }
};

POSIX_TEST_F(KilledRunTest, CostsNoPlaylistASongWhereverItDies) {
    const std::vector<std::string> expected{R"(D:\Music\Blue\One\c.mp3)",
                                            R"(D:\Music\Blue\One\a.mp3)"};
    std::size_t statements = 0;
    {
        support::RealLibrary undisturbed;
        Prepare(undisturbed);
        undisturbed.Database().ForgetStatements();
        Reconcile(undisturbed);
        statements = undisturbed.Database().Count("");
        EXPECT_EQ(Songs(undisturbed), expected);
        EXPECT_THAT(undisturbed.host.log, Contains(HasSubstr("Track # updated")));
    }
    ASSERT_GT(statements, 10U);
    std::size_t recovered = 0;
    for (std::size_t n = 2; n <= statements; ++n) {
        support::RealLibrary library;
        Prepare(library);
        library.CloseDatabase();
        EXPECT_TRUE(support::IsKilled([&] {
            library.OpenDatabase();
            library.Database().BeforeStatementNumber(n, [](Connection& database) {
                database.Flush();
                outside::KillThisProcess();
            });
            Reconcile(library);
        })) << n;
        library.OpenDatabase();
        Reconcile(library);
        EXPECT_EQ(Songs(library), expected) << "killed before statement " << n;
        for (const std::string& message : library.host.log)
            recovered += message.find("interrupted; playlists") != std::string::npos ? 1U : 0U;
    }
    EXPECT_GT(recovered, 0U) << "otherwise no run died behind the renumbering";
}

}  // namespace
}  // namespace quillon
