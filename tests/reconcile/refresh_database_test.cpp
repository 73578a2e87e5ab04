#include "reconcile/refresh_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/remove_duplicates.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// Three artists of two albums of two tracks, reconciled until nothing changes any more.
class RefreshDatabaseTest : public ::testing::Test {
  protected:
    RefreshDatabaseTest() {
        for (const char* artist : {"Blue", "Green", "Red"}) {
            for (const char* album : {"One", "Two"}) {
                for (const char* song : {"a", "b"})
                    library.AddFile(std::string(artist) + "\\" + album + "\\" + song + ".mp3");
            }
        }
        library.Reconcile();
        albums = library.Albums();
        tracks = library.Tracks();
        library.run.counts = {};
        library.calls.Forget();
    }

    bool NothingIsLost() { return library.Albums() == albums && library.Tracks() == tracks; }

    support::TestLibrary library;
    std::vector<std::string> albums, tracks;
};

TEST_F(RefreshDatabaseTest, ChangesNothingInALibraryThatHasNotChanged) {
    library.Reconcile();
    EXPECT_TRUE(NothingIsLost());
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(RefreshDatabaseTest, LogsAMissingRootAndChangesNothing) {
    library.run.settings.LibraryRoot = R"(D:\Elsewhere)";
    library.Reconcile();
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: RefreshDatabase, No folder at library root D:\Elsewhere)"));
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, SweepsNothingWhenTheRootAppearedAfterTheStart) {
    library.run.LibraryFolders.clear();
    library.Reconcile();
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: RefreshDatabase, No folder at library root D:\Music)"));
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, SaysWhatIsTheMatterWithARootThatHoldsNoFolders) {
    library.run.settings.LibraryDepthOption = true;
    library.run.LibraryFolders.clear();
    library.Reconcile();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: RefreshDatabase, No folder at library root "
                                              R"(D:\Music)"))
        << "it came only after the start";
    library.host.log.clear();
    library.files.AddFolder(R"(D:\Bare)");
    library.run.settings.LibraryRoot = R"(D:\Bare)";
    library.Reconcile();
    EXPECT_THAT(
        library.host.log,
        ElementsAre(R"(Quillon: RefreshDatabase, Library root D:\Bare holds neither a folder )"
                    "nor a .txt file that names one, and LibraryDepthOption=1 looks for the "
                    "music in those. Set it to 0, or name the folder above"));
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, SweepsNothingAfterAnAbort) {
    for (const char* artist : {"Blue", "Green", "Red"}) {
        library.run.AbortRequested = false;
        library.window.abortPressed = false;
        library.window.PressAbortWhen(
            [artist](const FormState& state) { return state.aItem.ends_with(artist); });
        library.Reconcile();
        EXPECT_TRUE(library.run.AbortRequested);
        EXPECT_TRUE(NothingIsLost()) << artist;
    }
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(RefreshDatabaseTest, StopsTheWalkAtTheArtistWhereAbortIsSeen) {
    library.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.ends_with("Green"); });
    library.Reconcile();
    EXPECT_TRUE(NothingIsLost());
    EXPECT_THAT(library.calls.Of({"Item"}), SizeIs(2));
}

TEST_F(RefreshDatabaseTest, KeepsRowsThatAnAbortedWalkAdded) {
    library.AddFile(R"(Blue\New\x.mp3)");
    library.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.ends_with("Green"); });
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), SizeIs(tracks.size() + 1));
    library.window.abortPressed = library.run.AbortRequested = false;
    library.window.onEvents = nullptr;
    library.Reconcile();
    EXPECT_THAT(library.Albums(), SizeIs(albums.size() + 1));
    EXPECT_THAT(library.Tracks(), SizeIs(tracks.size() + 1));
}

TEST_F(RefreshDatabaseTest, KeepsTheRowsBelowARootThatCannotBeListed) {
    library.files.unlistable = {R"(D:\Music)"};
    library.Reconcile();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: RefreshDatabaseFolder Line 2 "
                                              R"(Permission denied: D:\Music)"));
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, KeepsTheRowsBelowAnArtistFolderThatCannotBeListed) {
    library.files.unlistable = {R"(D:\Music\Green)"};
    library.Reconcile();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: RefreshDatabaseFolder Line 2 "
                                              R"(Permission denied: D:\Music\Green)"));
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, KeepsTheRowsOfAnAlbumFolderThatCannotBeListed) {
    library.files.unlistable = {R"(D:\Music\Green\One)", R"(D:\Music\Red\Two)"};
    library.Reconcile();
    EXPECT_THAT(library.host.log, SizeIs(2));
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, SweepsWhatHasVanishedBesideAFolderThatCannotBeListed) {
    library.files.unlistable = {R"(D:\Music\Green)"};
    library.RemoveFile(R"(Red\One\a.mp3)");
    library.RemoveFile(R"(Blue\Two\a.mp3)");
    library.RemoveFile(R"(Blue\Two\b.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(),
                ElementsAre("Blue|One|2", "Green|One|2", "Green|Two|2", "Red|One|1", "Red|Two|2"));
    EXPECT_THAT(library.Tracks(), SizeIs(tracks.size() - 3));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(RefreshDatabaseTest, KeepsRowsEvenIfTheyHadNoNumbers) {
    library.Execute("UPDATE Tracks SET Track = 0");
    library.Execute("UPDATE Albums SET Tracks = 0");
    library.files.unlistable = {R"(D:\Music\Green)"};
    library.Reconcile();
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, KeepsEverythingWhenATableCannotBeRead) {
    library.Database().Refuse("Scan Tracks");
    library.Reconcile();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: Remove Duplicates Error: Line 0 refused",
                                              "Quillon: RefreshDatabase Line 1 refused"));
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, LogsAFailingSweepOfTheAlbums) {
    library.AddAlbumRow("252E671073EC0900", "Violet", "Bare", 1);
    albums = library.Albums();
    library.Database().Refuse("Delete Albums");
    library.Reconcile();
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Refresh Database Track=0 Query Line 3 refused"));
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, SweepsTracksBeforeAlbums) {
    library.RemoveFile(R"(Red\One\a.mp3)");
    library.RemoveFile(R"(Red\One\b.mp3)");
    library.Database().BeforeStatement("Delete Albums", [this] {
        EXPECT_THAT(library.Rows("SELECT ID FROM Tracks WHERE SoundFile Like '%Red\\One\\%'"),
                    IsEmpty());
    });
    library.Reconcile();
    EXPECT_THAT(library.Albums(), SizeIs(albums.size() - 1));
}

TEST_F(RefreshDatabaseTest, KeepsTheRowsOfAnAlbumWithMoreFilesThan16BitsCount) {
    for (int i = 0; i < 32767; ++i)
        library.files.AddFile(R"(D:\Music\Green\One\)" + std::to_string(i) + ".mp3", "", {});
    library.Reconcile();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: RefreshDatabaseFolder Line 2 "
                                              "Overflow: 32769 files in one album "
                                              R"((D:\Music\Green\One))"));
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, ChangesNothingWhenItWasNotMarked) {
    library.run.ForgetTables();
    RefreshDatabase(library.run);
    EXPECT_TRUE(NothingIsLost());
    EXPECT_EQ(library.run.counts.tracksUnchanged, tracks.size());
}

/// The library's folders are those that a text file in the root names.
class ListedFoldersTest : public RefreshDatabaseTest {
  protected:
    ListedFoldersTest() {
        library.run.settings.LibraryDepthOption = true;
        library.run.settings.LibraryRoot = R"(D:\Lists)";
        library.files.AddFile(R"(D:\Lists\folders.TXT)",
                              "D:\\Music\r\n\r\nE:\\More\r\nE:\\More\r\nsome remark\r\n"
                              "\\\\nas\\share\\none\r\n");
        library.AddAlbumRow("252E671073EC0900", "Violet", "One", 5);
        library.AddTrackRow("252E671073EC0900", 4, R"(E:\More\Violet\One\a.mp3)");
        library.AddTrackRow("252E671073EC0900", 2, R"(E:\More\Violet\One\b.mp3)");
        albums = library.Albums();
        tracks = library.Tracks();
    }
};

TEST_F(ListedFoldersTest, KeepTheirRowsWhileTheyAreNotThere) {
    library.Reconcile();
    EXPECT_TRUE(NothingIsLost());
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: RefreshDatabase, No folder at library folder E:\More, )"
                            "2 tracks below it are kept"));
}

/// A list that was cut short looks the same.
TEST_F(ListedFoldersTest, LoseTheirRowsWhenTheyAreNotListedAnyMoreOnlyWithLeave) {
    library.files.AddFile(R"(D:\Lists\folders.TXT)", "D:\\Music\r\n");
    library.Reconcile();
    EXPECT_THAT(
        library.host.log,
        ElementsAre(HasSubstr("Nothing is removed: 2 tracks of 14 would go, and 2 of them lie in "
                              "none of the library folders")));
    EXPECT_TRUE(NothingIsLost());

    library.run.removals = {};
    library.run.removals.allAllowed = true;
    library.host.log.clear();
    library.Reconcile();
    EXPECT_THAT(library.Albums(), SizeIs(albums.size() - 1));
    EXPECT_THAT(library.Tracks(), SizeIs(tracks.size() - 2));
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: Album removed, its files were not found: "
                                              R"(Violet\One, 2 tracks)"));
}

TEST_F(ListedFoldersTest, AreNotAskedForWithoutTheDepthOption) {
    library.run.settings.LibraryDepthOption = false;
    library.run.removals.limits.Brake = false;
    library.Reconcile();
    EXPECT_THAT(library.Albums(), SizeIs(albums.size() - 1));
}

TEST_F(ListedFoldersTest, SweepNothingWhenTheirListCannotBeRead) {
    library.calls.Refuse(R"(OpenBinary D:\Lists\folders.TXT)", FailureNumber::PermissionDenied,
                         "x");
    library.Reconcile();
    EXPECT_THAT(library.host.log, ElementsAre(StartsWith("Quillon: RefreshDatabase Line 2 ")));
    EXPECT_TRUE(NothingIsLost());
}

TEST_F(RefreshDatabaseTest, CountsWhatItDid) {
    library.RemoveFile(R"(Red\One\a.mp3)");
    library.RemoveFile(R"(Blue\Two\a.mp3)");
    library.RemoveFile(R"(Blue\Two\b.mp3)");
    library.AddFile(R"(Yellow\One\a.mp3)");
    library.Execute("UPDATE Tracks SET Title='x' WHERE Title='a' AND Artist='Green'");
    library.Reconcile();
    const RunCounts& counts = library.run.counts;
    EXPECT_EQ(counts.albumsAdded, 1U);
    EXPECT_EQ(counts.albumsChanged, 1U);  // Red One, one track fewer
    EXPECT_EQ(counts.albumsRemoved, 1U);
    EXPECT_EQ(counts.albumsUnchanged, 4U);
    EXPECT_EQ(counts.tracksAdded, 1U);
    EXPECT_EQ(counts.tracksChanged, 3U);  // two titles, and Red One's b is number 1 now
    EXPECT_EQ(counts.tracksRemoved, 3U);
    EXPECT_EQ(counts.tracksUnchanged, 6U);
    EXPECT_EQ(counts.errors, 0U);
}

TEST_F(RefreshDatabaseTest, ReplacesRowsOfADuplicatedIdentifier) {
    library.Execute("UPDATE Albums SET CDJID='252E671073EC0001' WHERE CDJID='252E671073EC0002'");
    library.Execute("UPDATE Tracks SET CDJID='252E671073EC0001' WHERE CDJID='252E671073EC0002'");
    library.Reconcile();
    EXPECT_EQ(library.Albums(), albums);
    EXPECT_THAT(library.Tracks(), SizeIs(tracks.size()));
    EXPECT_EQ(library.Rows("SELECT DISTINCT CDJID FROM Albums").size(), albums.size());
}

}  // namespace
}  // namespace quillon
