// The files of generated playlists from one run to the next: written where they differ, deleted
// only when this run has made all that it wanted to.

#include <gmock/gmock.h>

#include "playlists/capture.h"
#include "playlists/refresh.h"
#include "tests/playlists/create_fixture.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class GeneratedFilesTest : public CreateTest {
  protected:
    GeneratedFilesTest() {
        AddSpinner("Ann", "One", "Folk");
        AddSpinner("Bob", "Four", "Jazz");
        WholeRun();
    }

    /// The phases that concern playlists, as the driver calls them.
    void WholeRun() {
        run().counts = {};
        NextRun();
        library.calls.Forget();
        library.Database().ForgetStatements();
        CapturePlaylists(run());
        RefreshPlaylist(run());
        Create();
    }

    std::vector<std::string> Written() { return library.calls.Of({R"(CreateText D:\Lists\)"}); }
};

TEST_F(GeneratedFilesTest, AreNotWrittenAgainWhereNothingIsNew) {
    ASSERT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Folk.pla", "Jazz.pla"));
    WholeRun();
    EXPECT_THAT(Written(), IsEmpty());
    EXPECT_EQ(library.Database().Count("Update Playlists"), 0U);
    EXPECT_EQ(library.Database().Count("Insert Playlists"), 0U);
    EXPECT_EQ(run().counts.playlistsWritten, 0U);
    EXPECT_THAT(Lists(), SizeIs(4));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(GeneratedFilesTest, AreWrittenWhereTheirContentIsAnother) {
    Renumber("One", 9);
    AddList("Bob.pla", {"B0 7", "B0 8", "B0 9"});
    WholeRun();
    EXPECT_THAT(Written(),
                ElementsAre(R"(CreateText D:\Lists\Folk.pla)", R"(CreateText D:\Lists\Ann.pla)",
                            R"(CreateText D:\Lists\Bob.pla)"));
    EXPECT_EQ(run().counts.playlistsWritten, 3U);
    EXPECT_THAT(Lines("Bob.pla"), ElementsAre("B0 0", "B0 1", "B0 2"));
}

TEST_F(GeneratedFilesTest, AreWrittenWhenTheyAreShuffledAnew) {
    AddLongAlbum("Cee", "Folk", 90);
    run().settings.RandomizePlaylist = true;
    WholeRun();
    WholeRun();
    EXPECT_THAT(Written(), Contains(R"(CreateText D:\Lists\Folk.pla)"));
}

/// A file that two lists share must not be written for both in every run.
TEST_F(GeneratedFilesTest, AreNotWrittenAgainWhereListsShareAFile) {
    library.Execute("UPDATE Spinner SET Genre='Bob' WHERE Artist='Ann'");
    WholeRun();
    EXPECT_THAT(Lines("Bob.pla"), ElementsAre("B0 0", "B0 1", "B0 2")) << "the artist's is later";
    WholeRun();
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(GeneratedFilesTest, GoWhenNoMusicBelongsInThemAnyMore) {
    library.Execute("UPDATE Spinner SET Genre='Folk' WHERE Artist='Bob'");
    WholeRun();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Folk.pla"));
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: Playlist D:\Lists\Jazz.pla removed because no music )"
                            "belongs in it any more"));
    EXPECT_THAT(run().removals.Of(Removable::Playlists).names, ElementsAre(R"(D:\Lists\Jazz.pla)"));
    EXPECT_EQ(run().counts.playlistsRemoved, 1U);
    EXPECT_THAT(Playlists(), SizeIs(4)) << "the row stays, to be found again";
}

TEST_F(GeneratedFilesTest, StayWhenTheirGeneratorIsSwitchedOff) {
    library.Execute("UPDATE Spinner SET Genre='Folk' WHERE Artist='Bob'");
    run().settings.GenrePlaylist = false;
    WholeRun();
    EXPECT_THAT(Lists(), Contains("Jazz.pla"));
}

TEST_F(GeneratedFilesTest, StayInARunThatIsAborted) {
    library.Execute("UPDATE Spinner SET Genre='Folk' WHERE Artist='Bob'");
    for (const char* item : {"2. Capture Existing Playlists", "1. Update Existing Playlists",
                             "1. Read Playlist Track / Album Info", "2. New Genre Playlists",
                             "3. New Artists Playlists"}) {
        library.window.PressAbortWhen(
            [item](const FormState& state) { return state.aItem == item; });
        WholeRun();
        EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Folk.pla", "Jazz.pla")) << item;
        run().AbortRequested = library.window.abortPressed = false;
    }
}

TEST_F(GeneratedFilesTest, StayWhereNothingCanBeRead) {
    run().ForgetTables();
    library.Database().Refuse("Scan Spinner");
    WholeRun();
    EXPECT_THAT(Lists(), SizeIs(4));
}

/// Parts of a list whose first part could not be made may be all that there is of it.
TEST_F(GeneratedFilesTest, StayAsPartsOfAListThatCouldNotBeMade) {
    AddLongAlbum("Cee", "Folk", 40);
    run().settings.MaxPlaylistLength = 10;
    WholeRun();
    ASSERT_THAT(Lists(), Contains("Folk003.pla"));
    ASSERT_THAT(Lists(), Contains("Cee003.pla"));
    run().settings.MaxPlaylistLength = 100;
    library.calls.Refuse(R"(CreateText D:\Lists\Folk.pla)", FailureNumber::PermissionDenied, "x");
    WholeRun();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Cee.pla", "Folk.pla", "Folk001.pla",
                                     "Folk002.pla", "Folk003.pla", "Jazz.pla"));
    EXPECT_THAT(Lines("Folk.pla"), SizeIs(11)) << "what could not be replaced";
}

TEST_F(GeneratedFilesTest, StayInABrakedRun) {
    library.Execute("UPDATE Spinner SET Genre='Folk' WHERE Artist='Bob'");
    run().removals.Allow(run(), {.kind = Removable::Tracks, .names = {"x"}, .doubt = "as a test"});
    ASSERT_TRUE(run().removals.Braked());
    WholeRun();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Folk.pla", "Jazz.pla"));
}

/// A download table that has lost its content is no reason to delete what was made of it.
TEST_F(GeneratedFilesTest, StayWhenNoMusicIsFoundAtAllUnlessThePersonWantsIt) {
    library.Execute("DELETE * FROM Spinner");
    WholeRun();
    EXPECT_THAT(Lists(), SizeIs(4));
    EXPECT_THAT(library.host.log, ElementsAre(HasSubstr("no music was found to make new ones of")));
    run().removals = {};
    run().removals.allAllowed = true;
    WholeRun();
    EXPECT_THAT(Lists(), IsEmpty());
}

TEST_F(GeneratedFilesTest, GoInNumbersWhereOnlyTheirSplittingIsAnother) {
    AddLongAlbum("Cee", "Folk", 90);
    run().settings.MaxPlaylistLength = 5;
    WholeRun();
    ASSERT_THAT(Lists(), SizeIs(4 + 1 + 15 + 14));
    run().settings.MaxPlaylistLength = 100;
    WholeRun();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Cee.pla", "Folk.pla", "Jazz.pla"));
}

/// The same folder under another letter: a row of the one must not delete a file of the other.
TEST_F(GeneratedFilesTest, StayWhenTheFolderIsWrittenOtherwise) {
    run().settings.PlayListPath = R"(d:\lists\)";
    WholeRun();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Folk.pla", "Jazz.pla"));
}

TEST_F(GeneratedFilesTest, OfAFormerFolderGoWhenTheyAreThereAnew) {
    library.files.AddFolder(R"(D:\Other)");
    run().settings.PlayListPath = R"(D:\Other\)";
    WholeRun();
    EXPECT_THAT(Lists(), IsEmpty());
    EXPECT_TRUE(library.files.FileExists(R"(D:\Other\Jazz.pla)"));
}

TEST_F(GeneratedFilesTest, CostNothingElseWhenOneCannotBeDeleted) {
    library.Execute("UPDATE Spinner SET Artist='Nobody'");
    library.Execute("UPDATE Tracks SET Artist='Nobody' WHERE Title='One'");
    library.calls.Refuse(R"(DeleteFile D:\Lists\Ann.pla)", FailureNumber::PermissionDenied, "x");
    WholeRun();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Folk.pla", "Nobody.pla"));
    EXPECT_THAT(library.host.log,
                Contains(R"(Quillon: Generate New Playlists Error: Line 0 Permission denied: x )"
                         R"((D:\Lists\Ann.pla))"));
}

/// A row may name anything; only playlists are deleted for it.
TEST_F(GeneratedFilesTest, AreOnlyThoseWithAPlaylistsName) {
    library.files.AddFile(R"(D:\Lists\Quillon.ini)", "[NPFrame]");
    library.Execute(
        "INSERT INTO Playlists (FilePath, Filename, Type, AutoGenre) VALUES "
        "('D:\\Lists\\', 'Quillon', '.ini', True)");
    WholeRun();
    EXPECT_THAT(Lists(), Contains("Quillon.ini"));
}

}  // namespace
}  // namespace quillon
