#include <fstream>

#include "tests/outside/posix_test.h"
#include "tests/reconcile/moved_fixture.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class MovedFilesTest : public MovedMusicFixture {
  protected:
    /// With one album, Red\One, whose songs were played 10, 20 and 30 times.
    MovedFilesTest() {
        AddAlbum(R"(Red\One)", "red");
        Start();
    }
};

TEST_F(MovedFilesTest, KeepTheirRowsWhenTheyAreRenamed) {
    Move(R"(Red\One\02 - Bay.mp3)", R"(Red\One\02 - Bight.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(), ElementsAre(R"(10|Red\One\01 - Ash.mp3|Ash|1)",
                                      R"(20|Red\One\02 - Bight.mp3|Bight|2)",
                                      R"(30|Red\One\03 - Cam.mp3|Cam|3)"));
    EXPECT_THAT(Albums(), ElementsAre("100|Red|One|3"));
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Track followed to its new place: D:\Music\Red\One\)"
                                   R"(02 - Bay.mp3 -> D:\Music\Red\One\02 - Bight.mp3)"));
    EXPECT_EQ(library.run.counts.tracksAdded, 0U);
    EXPECT_EQ(library.run.counts.tracksRemoved, 0U);
    EXPECT_EQ(library.run.counts.tracksChanged, 1U);
}

TEST_F(MovedFilesTest, AreAddedAnewWhereRowsDoNotFollow) {
    library.run.movedMusic.FollowMovedFiles = false;
    fs::remove(Sounds());
    Move(R"(Red\One\02 - Bay.mp3)", R"(Red\One\02 - Bight.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(), ElementsAre(R"(0|Red\One\02 - Bight.mp3|Bight|2)",
                                      R"(10|Red\One\01 - Ash.mp3|Ash|1)",
                                      R"(30|Red\One\03 - Cam.mp3|Cam|3)"));
    EXPECT_FALSE(fs::exists(Sounds()));
    EXPECT_FALSE(fs::exists(Missing()));
}

TEST_F(MovedFilesTest, KeepTheirRowsBetweenArtists) {
    AddAlbum(R"(Blue\Two)", "blue");
    Reconcile();
    Move(R"(Red\One\02 - Bay.mp3)", R"(Blue\Two\04 - Bay.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(), Contains(R"(20|Blue\Two\04 - Bay.mp3|Bay|3)"));
    EXPECT_THAT(Albums(), ElementsAre("0|Blue|Two|4", "100|Red|One|2"));
}

TEST_F(MovedFilesTest, KeepTheirRowsWhenTheyGetOtherTagsOnTheWay) {
    fs::remove(library.Music(R"(Red\One\02 - Bay.mp3)"));
    support::RawTag tag;
    tag.song = "Bight";
    tag.track = 7;
    library.AddFile(
        R"(Green\New\Bight.mp3)",
        std::string("ID3\3\0\0\0\0\0\5hello", 15) + Sound("red b") + support::TagBytes(tag), 90);
    Reconcile();
    EXPECT_THAT(Tracks(), Contains(R"(20|Green\New\Bight.mp3|Bight|1)"));
}

POSIX_TEST_F(MovedFilesTest, KeepTheirRowsWhenOnlyLetterCaseChanges) {
    Move(R"(Red)", R"(RED)");
    Move(R"(RED\One\02 - Bay.mp3)", R"(RED\One\02 - BAY.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(),
                ElementsAre(R"(10|Red\One\01 - Ash.mp3|Ash|1)", R"(20|Red\One\02 - Bay.mp3|BAY|2)",
                            R"(30|Red\One\03 - Cam.mp3|Cam|3)"));
    EXPECT_THAT(Log(), IsEmpty());
}

/// On a disk with letter case one song may get the name of another, which the database cannot tell.
POSIX_TEST_F(MovedFilesTest, KeepTheirRowsWhereOneTakesTheNameOfAnotherInOtherLetterCase) {
    const auto tracks = Tracks();
    Move(R"(Red\One\02 - Bay.mp3)", R"(Red\One\01 - ASH.mp3)");
    Reconcile();
    EXPECT_EQ(Tracks(), tracks);
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("rename one of them")));
    Move(R"(Red\One\01 - ASH.mp3)", R"(Red\One\02 - Bay.mp3)");
    Reconcile();
    EXPECT_EQ(Tracks(), tracks);
}

TEST_F(MovedFilesTest, KeepTheirRowsWhenTheySwapNames) {
    Move(R"(Red\One\01 - Ash.mp3)", R"(Red\One\x)");
    Move(R"(Red\One\03 - Cam.mp3)", R"(Red\One\01 - Ash.mp3)");
    Move(R"(Red\One\x)", R"(Red\One\03 - Cam.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(),
                ElementsAre(R"(10|Red\One\03 - Cam.mp3|Cam|1)", R"(20|Red\One\02 - Bay.mp3|Bay|2)",
                            R"(30|Red\One\01 - Ash.mp3|Ash|3)"));
    const auto rows = library.Rows("SELECT * FROM Tracks ORDER BY ID");
    Log().clear();
    Reconcile();
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), rows);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(MovedFilesTest, KeepTheirRowsWhereEachTakesTheNextOnesName) {
    Move(R"(Red\One\03 - Cam.mp3)", R"(Red\One\04 - Dee.mp3)");
    Move(R"(Red\One\02 - Bay.mp3)", R"(Red\One\03 - Cam.mp3)");
    Move(R"(Red\One\01 - Ash.mp3)", R"(Red\One\02 - Bay.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(),
                ElementsAre(R"(10|Red\One\02 - Bay.mp3|Bay|1)", R"(20|Red\One\03 - Cam.mp3|Cam|2)",
                            R"(30|Red\One\04 - Dee.mp3|Dee|3)"));
}

TEST_F(MovedFilesTest, GetNoRowOfASongThatIsOverwritten) {
    Move(R"(Red\One\01 - Ash.mp3)", R"(Red\One\02 - Bay.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(), ElementsAre(R"(20|Red\One\02 - Bay.mp3|Bay|1)",
                                      R"(30|Red\One\03 - Cam.mp3|Cam|2)"));
}

TEST_F(MovedFilesTest, KeepTheirRowsWhereTheyMoveUpAfterOneIsRemoved) {
    library.run.movedMusic.KeepDays = 14;
    fs::remove(library.Music(R"(Red\One\01 - Ash.mp3)"));
    Move(R"(Red\One\02 - Bay.mp3)", R"(Red\One\01 - Ash.mp3)");
    Move(R"(Red\One\03 - Cam.mp3)", R"(Red\One\02 - Bay.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(),
                ElementsAre(R"(10|Red\One\03 - Cam.mp3|Ash|0)", R"(20|Red\One\01 - Ash.mp3|Ash|1)",
                            R"(30|Red\One\02 - Bay.mp3|Bay|2)"));
    EXPECT_THAT(Log(),
                Contains(R"(Quillon: The song of D:\Music\Red\One\01 - Ash.mp3 is gone: another )"
                         R"(one has moved up to its name)"));
    const auto rows = library.Rows("SELECT * FROM Tracks ORDER BY ID");
    Reconcile();
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), rows);
    Add(R"(Red\One\04 - Ash.mp3)", "red a", 9);
    Reconcile();
    EXPECT_THAT(Tracks(), Contains(R"(10|Red\One\04 - Ash.mp3|Ash|3)"));
}

TEST_F(MovedFilesTest, GetRowsOfTheirOwnWhereTheyAreCopies) {
    fs::copy_file(library.Music(R"(Red\One\02 - Bay.mp3)"),
                  library.Music(R"(Red\One\04 - Bay.mp3)"));
    Reconcile();
    EXPECT_THAT(
        Tracks(),
        ElementsAre(R"(0|Red\One\04 - Bay.mp3|Bay|4)", R"(10|Red\One\01 - Ash.mp3|Ash|1)",
                    R"(20|Red\One\02 - Bay.mp3|Bay|2)", R"(30|Red\One\03 - Cam.mp3|Cam|3)"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(MovedFilesTest, AreNotTakenForEachOtherWhereTheSameSoundIsNewTwice) {
    Add(R"(Red\Two\y.mp3)", "red b", 9);
    Move(R"(Red\One\02 - Bay.mp3)", R"(Red\Two\x.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(), Contains(R"(0|Red\Two\x.mp3|x|1)"));
    EXPECT_THAT(Tracks(), Contains(R"(0|Red\Two\y.mp3|y|2)"));
    EXPECT_THAT(Log(),
                ElementsAre(HasSubstr(R"(what became of D:\Music\Red\One\02 - Bay.mp3: the same )"
                                      R"(sound is missing once and new 2 times, as )"
                                      R"(D:\Music\Red\Two\x.mp3 for one)"),
                            HasSubstr("Track removed, its file was not found")));
}

TEST_F(MovedFilesTest, AreNotReadWhileNothingChanges) {
    library.RealFiles().opened = 0;
    Reconcile();
    EXPECT_EQ(library.RealFiles().opened, 0U);
    const auto written = fs::last_write_time(Sounds());
    Reconcile();
    EXPECT_EQ(fs::last_write_time(Sounds()), written);
    Add(R"(Red\One\04 - Dee.mp3)", "red d", 4);
    Reconcile();
    // Once for its tag, once for its sound.
    EXPECT_LE(library.RealFiles().opened, 2U);
    EXPECT_GE(library.RealFiles().opened, 1U);
}

TEST_F(MovedFilesTest, AreReadAgainWhenTheyChangeWhileTheyAreRead) {
    Add(R"(Red\One\04 - Dee.mp3)", "red d", 4);
    const auto change = [this](std::string_view path) {
        if (path.ends_with("Dee.mp3")) Add(R"(Red\One\04 - Dee.mp3)", "half of d", 5);
    };
    library.RealFiles().beforeReading = change;
    Reconcile();
    library.RealFiles().beforeReading = [](std::string_view) {};
    library.RealFiles().opened = 0;
    Reconcile();
    EXPECT_EQ(library.RealFiles().opened, 1U);
    Move(R"(Red\One\04 - Dee.mp3)", R"(Red\One\05 - Elk.mp3)");
    Log().clear();
    Reconcile();
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("Track followed to its new place")));
}

/// The copy of a file has not come to its end when the run sees it, and the file itself is gone.
TEST_F(MovedFilesTest, KeepTheirRowsWhileTheyAreBeingMoved) {
    fs::remove(library.Music(R"(Red\One\02 - Bay.mp3)"));
    Add(R"(Red\Two\02 - Bay.mp3)", "half of b", 4);
    library.RealFiles().beforeReading = [this](std::string_view path) {
        if (path.find("Two") != std::string_view::npos)
            Add(R"(Red\Two\02 - Bay.mp3)", "some more of b", 5);
    };
    Reconcile();
    library.RealFiles().beforeReading = [](std::string_view) {};
    EXPECT_THAT(Tracks(), Contains(::testing::StartsWith(R"(20|Red\One\02 - Bay.mp3|Bay|)")));
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("keep their rows in this run")));
}

TEST_F(MovedFilesTest, WithoutAnySoundAreReadOnce) {
    library.AddFile(R"(Red\One\04 - Dee.mp3)", "", 4);
    library.AddFile(R"(Red\One\05 - Elk.mp3)", support::TagBytes({}), 5);
    Reconcile();
    library.RealFiles().opened = 0;
    Reconcile();
    EXPECT_EQ(library.RealFiles().opened, 0U);
    Log().clear();
    Move(R"(Red\One\04 - Dee.mp3)", R"(Red\One\06 - Fay.mp3)");
    Reconcile();
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("Track removed, its file was not found")));
}

TEST_F(MovedFilesTest, MakeADamagedRecordOfThemAnew) {
    std::ofstream(Sounds()) << "Quillon known sounds 1\r\nSong 1 2";
    Reconcile();
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("is damaged, and is made anew")));
    Move(R"(Red\One\02 - Bay.mp3)", R"(Red\One\02 - Bight.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(), Contains(R"(20|Red\One\02 - Bight.mp3|Bight|2)"));
}

POSIX_TEST_F(MovedFilesTest, GetNoRowsOfSongsThatAreOnlyOutOfSight) {
    fs::copy(library.Music("Red"), library.Music("Blue"), fs::copy_options::recursive);
    const bool isWell = support::RunsWellUnprivileged(library.Folder(), [this] {
        fs::permissions(library.Music(R"(Red\One)"), fs::perms::none);
        Reconcile();
        fs::permissions(library.Music(R"(Red\One)"), fs::perms::owner_all);
        EXPECT_THAT(Tracks(), Contains(R"(20|Red\One\02 - Bay.mp3|Bay|2)"));
        EXPECT_THAT(Tracks(), Contains(R"(0|Blue\One\02 - Bay.mp3|Bay|2)"));
    });
    EXPECT_TRUE(isWell);
}

}  // namespace
}  // namespace quillon
