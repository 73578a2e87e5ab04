#include "remote/make_remote.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/sql.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class MakeRemoteTest : public ::testing::Test {
  protected:
    MakeRemoteTest() {
        library.run.settings.AlbumCoverFolder = R"(K:\Covers\)";
        library.run.settings.LibraryRoot = R"(\\nas\music\)";
        library.run.settings.PlayListPath = R"(P:\Lists\)";
        library.run.settings.PlayListPath2 = R"(M:\Lists\)";
    }

    void AddCover(const std::string& path) {
        library.Execute("INSERT INTO Albums (ImageFile) VALUES (" + FilterQuoted(path) + ")");
    }
    void AddSound(const std::string& path) { library.AddTrackRow("A1", 1, path); }
    void AddPlaylist(const std::string& type, const std::string& path) {
        library.Execute("INSERT INTO Playlists (Type, FilePath) VALUES (" + FilterQuoted(type) +
                        ", " + FilterQuoted(path) + ")");
    }
    /// What becomes of a stored sound file.
    std::string SoundFrom(const std::string& path) {
        library.Execute("DELETE * FROM Tracks");
        AddSound(path);
        MakeRemote(library.run);
        return Sounds().front();
    }
    std::vector<std::string> Covers() {
        return library.Rows("SELECT ImageFile FROM Albums ORDER BY ID");
    }
    std::vector<std::string> Sounds() {
        return library.Rows("SELECT SoundFile FROM Tracks ORDER BY ID");
    }
    std::vector<std::string> Lists() {
        return library.Rows("SELECT Type, FilePath FROM Playlists ORDER BY ID");
    }

    support::TestLibrary library;
};

TEST_F(MakeRemoteTest, RepointsEveryKindOfPathToTheDriveOfItsFolder) {
    AddCover(R"(D:\Covers\Ann - First.jpg)");
    AddSound(R"(D:\Albums\X\01.mp3)");
    AddPlaylist("pla", R"(D:\Lists\)");
    AddPlaylist("m3u", R"(\\old\share\M3u\)");
    MakeRemote(library.run);
    EXPECT_THAT(Covers(), ElementsAre(R"(K:\Covers\Ann - First.jpg)"));
    EXPECT_THAT(Sounds(), ElementsAre(R"(\\nas\music\Albums\X\01.mp3)"));
    EXPECT_THAT(Lists(), ElementsAre(R"(pla|P:\Lists\)", R"(m3u|M:\M3u\)"));
    EXPECT_EQ(library.run.counts.rowsRepointed, 4U);
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(MakeRemoteTest, ShowsItsFourSteps) {
    MakeRemote(library.run);
    EXPECT_THAT(library.calls.Of({"Item"}),
                ElementsAre("Item 1. Album Covers", "Item 2. MP3 Tracks", "Item 3. Pla Playlists",
                            "Item 4. M3u Playlists"));
}

TEST_F(MakeRemoteTest, ReplacesEveryOccurrenceOfTheDrive) {
    EXPECT_EQ(SoundFrom(R"(Music\Ann\Music\Old Music.mp3)"),
              R"(\\nas\music\Ann\\\nas\music\Old \\nas\music.mp3)");
}

TEST_F(MakeRemoteTest, LeavesPathsWithoutADrivePartAsTheyAre) {
    for (const char* path : {"a.mp3", "D:/Music/a.mp3", "//nas/music/a.mp3", R"(\Music\a.mp3)",
                             R"(\\nas)", R"(\\nas\music)", R"(\\)"}) {
        EXPECT_EQ(SoundFrom(path), path);
    }
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(MakeRemoteTest, TakesTheFirstFolderOfAPathWithoutADriveForOne) {
    EXPECT_EQ(SoundFrom(R"(Albums\a.mp3)"), R"(\\nas\music\a.mp3)");
}

TEST_F(MakeRemoteTest, LeavesEmptyAndMissingPathsAlone) {
    AddCover("");
    library.Execute("INSERT INTO Albums (Title) VALUES ('No cover')");
    MakeRemote(library.run);
    EXPECT_THAT(Covers(), ElementsAre("", "Null"));
}

TEST_F(MakeRemoteTest, LeavesPlaylistsOfOtherTypesAlone) {
    AddPlaylist("PLA", R"(D:\Lists\)");
    AddPlaylist("plb", R"(D:\Lists\)");
    AddPlaylist("", R"(D:\Lists\)");
    library.Execute(R"(INSERT INTO Playlists (FilePath) VALUES ('D:\Lists\'))");
    MakeRemote(library.run);
    EXPECT_THAT(Lists(), ElementsAre(R"(PLA|P:\Lists\)", R"(plb|D:\Lists\)", R"(|D:\Lists\)",
                                     R"(Null|D:\Lists\)"));
}

TEST_F(MakeRemoteTest, PassesOverAStepWhoseFolderIsNotSet) {
    library.run.settings.AlbumCoverFolder = "\\";
    AddCover(R"(D:\Covers\a.jpg)");
    AddSound(R"(D:\a.mp3)");
    AddPlaylist("pla", R"(D:\Lists\)");
    AddPlaylist("m3u", R"(D:\Lists\)");
    MakeRemote(library.run);
    EXPECT_THAT(Covers(), ElementsAre(R"(D:\Covers\a.jpg)"));
    EXPECT_THAT(Sounds(), ElementsAre(R"(\\nas\music\a.mp3)"));
    EXPECT_THAT(Lists(), ElementsAre(R"(pla|P:\Lists\)", R"(m3u|M:\Lists\)"));
    EXPECT_EQ(library.Database().Count("SELECT ImageFile"), 1U);  // the test's own
}

TEST_F(MakeRemoteTest, FinishesTheStepInWhichAbortIsPressedAndPassesOverTheRest) {
    AddSound(R"(D:\a.mp3)");
    AddSound(R"(D:\b.mp3)");
    AddPlaylist("pla", R"(D:\Lists\)");
    int calls = 0;
    library.window.PressAbortWhen([&calls](const FormState& state) {
        return state.aItem == "2. MP3 Tracks" && ++calls == 2;
    });
    MakeRemote(library.run);
    EXPECT_THAT(Sounds(), ElementsAre(R"(\\nas\music\a.mp3)", R"(\\nas\music\b.mp3)"));
    EXPECT_THAT(Lists(), ElementsAre(R"(pla|D:\Lists\)"));
    EXPECT_EQ(library.window.last.aItem, "3. Pla Playlists");
}

TEST_F(MakeRemoteTest, DoesNothingWhenAbortIsPressedBefore) {
    AddCover(R"(D:\Covers\a.jpg)");
    library.window.abortPressed = true;
    MakeRemote(library.run);
    EXPECT_THAT(Covers(), ElementsAre(R"(D:\Covers\a.jpg)"));
}

TEST_F(MakeRemoteTest, EndsAtAFailureAndKeepsWhatIsWritten) {
    AddCover(R"(D:\Covers\a.jpg)");
    AddSound(R"(D:\a.mp3)");
    AddSound(R"(D:\)" + std::string(252, 'x'));  // does not fit behind the new drive
    AddSound(R"(D:\c.mp3)");
    AddPlaylist("pla", R"(D:\Lists\)");
    MakeRemote(library.run);
    EXPECT_THAT(Covers(), ElementsAre(R"(K:\Covers\a.jpg)"));
    EXPECT_THAT(Sounds(),
                ElementsAre(R"(\\nas\music\a.mp3)", StartsWith(R"(D:\xxx)"), R"(D:\c.mp3)"));
    EXPECT_THAT(Lists(), ElementsAre(R"(pla|D:\Lists\)"));
    EXPECT_THAT(library.host.log,
                ElementsAre(AllOf(StartsWith("Quillon: MakeRemote Line 2 "), HasSubstr("SoundFile"),
                                  EndsWith(R"( (D:\)" + std::string(252, 'x') + ")"))));
    EXPECT_EQ(library.window.last.aError, "MakeRemote");
}

TEST_F(MakeRemoteTest, LogsAQueryThatIsRefusedAndEnds) {
    library.Database().Refuse("SELECT FilePath FROM Playlists WHERE Playlists.Type =\"pla\"");
    AddSound(R"(D:\a.mp3)");  // has nothing to do with it
    AddPlaylist("m3u", R"(D:\Lists\)");
    MakeRemote(library.run);
    EXPECT_THAT(Lists(), ElementsAre(R"(m3u|D:\Lists\)"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: MakeRemote Line 3 refused (3. Pla Playlists)"));
}

TEST_F(MakeRemoteTest, ChangesNothingTheSecondTimeAndLeavesTheFileAsItIs) {
    for (int i = 0; i < 100; ++i) {
        AddCover(R"(D:\Covers\a.jpg)");
        AddSound(R"(D:\Ann's\[é] 100%.mp3)");
        AddPlaylist("pla", R"(D:\Lists\)");
        AddPlaylist("m3u", R"(D:\Lists\)");
    }
    MakeRemote(library.run);
    EXPECT_EQ(library.run.counts.rowsRepointed, 400U);
    const std::string before = library.DatabaseBytes();
    MakeRemote(library.run);
    EXPECT_TRUE(library.DatabaseBytes() == before);
    EXPECT_EQ(library.run.counts.rowsRepointed, 400U);
    EXPECT_EQ(Sounds().back(), R"(\\nas\music\Ann's\[é] 100%.mp3)");
}

TEST_F(MakeRemoteTest, RunsTheStatementsAsOtherProgramsKnowThem) {
    MakeRemote(library.run);
    for (const char* statement :
         {"SELECT ImageFile FROM Albums WHERE Albums.ImageFile is Not Null and "
          "Albums.ImageFile<>\"\"",
          "SELECT SoundFile FROM Tracks WHERE Tracks.SoundFile is Not Null and "
          "Tracks.SoundFile<>\"\"",
          "SELECT FilePath FROM Playlists WHERE Playlists.Type =\"pla\" AND Playlists.FilePath is "
          "Not Null and Playlists.FilePath<>\"\"",
          "SELECT FilePath FROM Playlists WHERE Playlists.Type =\"m3u\" AND Playlists.FilePath is "
          "Not Null and Playlists.FilePath<>\"\""}) {
        EXPECT_EQ(library.Database().Count(statement), 1U) << statement;
    }
}

}  // namespace
}  // namespace quillon
