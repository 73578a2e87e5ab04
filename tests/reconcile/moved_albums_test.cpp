
#include "tests/outside/child_process.h"
#include "tests/outside/posix_test.h"
#include "tests/reconcile/moved_fixture.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

class MovedAlbumsTest : public MovedMusicFixture {
  protected:
    /// Two albums: Red\One, played 100 times, and Red\Two, 200 times.
    MovedAlbumsTest() {
        AddAlbum(R"(Red\One)", "one");
        AddAlbum(R"(Red\Two)", "two", 30);
        Start();
    }

    std::vector<std::string> Identifiers() {
        return library.Rows("SELECT CDJID FROM Albums ORDER BY TimesPlayed");
    }
};

TEST_F(MovedAlbumsTest, KeepTheirRowsAndIdentifiersWhenTheyAreRenamed) {
    const auto identifiers = Identifiers();
    Move(R"(Red\One)", R"(Red\Three)");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Red|Three|3", "200|Red|Two|3"));
    EXPECT_EQ(Identifiers(), identifiers);
    EXPECT_THAT(Tracks(), Contains(R"(20|Red\Three\02 - Bay.mp3|Bay|2)"));
    EXPECT_THAT(Tracks(), SizeIs(6));
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Album followed to its new place, 3 tracks: )"
                                   R"(D:\Music\Red\One -> D:\Music\Red\Three)"));
    EXPECT_EQ(library.run.counts.albumsAdded, 0U);
    EXPECT_EQ(library.run.counts.albumsRemoved, 0U);
    EXPECT_EQ(library.run.counts.albumsChanged, 1U);
    EXPECT_EQ(library.run.counts.tracksChanged, 3U);
}

TEST_F(MovedAlbumsTest, KeepTheirRowsWhenTheirArtistIsRenamed) {
    Move("Red", "Blue");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Blue|One|3", "200|Blue|Two|3"));
    EXPECT_THAT(library.Rows("SELECT DISTINCT Artist FROM Tracks"), ElementsAre("Blue"));
    EXPECT_THAT(Log(), SizeIs(2));
}

TEST_F(MovedAlbumsTest, KeepTheirRowsWhenTheySwapNames) {
    const auto identifiers = Identifiers();
    Move(R"(Red\One)", R"(Red\x)");
    Move(R"(Red\Two)", R"(Red\One)");
    Move(R"(Red\x)", R"(Red\Two)");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Red|Two|3", "200|Red|One|3"));
    EXPECT_EQ(Identifiers(), identifiers);
    EXPECT_THAT(Tracks(), Contains(R"(20|Red\Two\02 - Bay.mp3|Bay|2)"));
}

TEST_F(MovedAlbumsTest, GoAlongWithMostOfTheirTracks) {
    Move(R"(Red\One\01 - Ash.mp3)", R"(Red\Three\01 - Ash.mp3)");
    Move(R"(Red\One\02 - Bay.mp3)", R"(Red\Four\01 - Bay.mp3)");
    Move(R"(Red\One\03 - Cam.mp3)", R"(Red\Four\02 - Cam.mp3)");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("0|Red|Three|1", "100|Red|Four|2", "200|Red|Two|3"));
    EXPECT_THAT(Log(), SizeIs(3));
    EXPECT_THAT(Log(), ::testing::Each(StartsWith("Quillon: Track followed")));
}

TEST_F(MovedAlbumsTest, StayWhereSomeOfTheirTracksStay) {
    Move(R"(Red\One\02 - Bay.mp3)", R"(Red\Three\01 - Bay.mp3)");
    Move(R"(Red\One\03 - Cam.mp3)", R"(Red\Three\02 - Cam.mp3)");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("0|Red|Three|2", "100|Red|One|1", "200|Red|Two|3"));
}

TEST_F(MovedAlbumsTest, EndWhereTheirTracksJoinAnother) {
    for (const char* const song : {"01 - Ash", "02 - Bay", "03 - Cam"}) {
        Move(std::string(R"(Red\One\)") + song + ".mp3",
             std::string(R"(Red\Two\1)") + song + ".mp3");
    }
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("200|Red|Two|6"));
    EXPECT_THAT(Tracks(), SizeIs(6));
    EXPECT_THAT(Tracks(), Contains(StartsWith(R"(20|Red\Two\102 - Bay.mp3|Bay|)")));
}

/// The library lies on another drive from now on.
TEST_F(MovedAlbumsTest, KeepTheirRowsWhenTheWholeLibraryMovesToANewDrive) {
    const auto identifiers = Identifiers();
    fs::rename(library.Music(), library.Folder() / "Drive");
    library.run.settings.LibraryRoot = R"(D:\Drive)";
    library.run.LibraryFolders = {{R"(D:\Drive)", "Drive"}};
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Red|One|3", "200|Red|Two|3"));
    EXPECT_EQ(Identifiers(), identifiers);
    EXPECT_THAT(Tracks(), Contains(R"(20|D:\Drive\Red\One\02 - Bay.mp3|Bay|2)"));
    EXPECT_THAT(Tracks(), SizeIs(6));
    EXPECT_FALSE(library.run.removals.Braked());
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Album followed to its new place, 3 tracks: )"
                                   R"(D:\Music\Red\One -> D:\Drive\Red\One)",
                                   HasSubstr(R"(D:\Drive\Red\Two)")));
}

TEST_F(MovedAlbumsTest, KeepTheirRowsBetweenLibraryFolders) {
    fs::create_directories(library.Folder() / "More" / "Red");
    library.run.LibraryFolders.push_back({R"(D:\More)", "More"});
    fs::rename(library.Music(R"(Red\One)"), library.Folder() / "More" / "Red" / "One");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Red|One|3", "200|Red|Two|3"));
    EXPECT_THAT(Tracks(), Contains(R"(20|D:\More\Red\One\02 - Bay.mp3|Bay|2)"));
}

TEST_F(MovedAlbumsTest, AreKnownByTheirTitlesWhereTheirSoundsAreNot) {
    fs::remove(Sounds());
    Move(R"(Red\One)", R"(Blue\Three)");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Blue|Three|3", "200|Red|Two|3"));
    EXPECT_THAT(Tracks(), Contains(R"(20|Blue\Three\02 - Bay.mp3|Bay|2)"));
}

TEST_F(MovedAlbumsTest, AreNotKnownByAFewTitlesAlone) {
    fs::remove(Sounds());
    fs::remove(library.Music(R"(Red\One\01 - Ash.mp3)"));
    fs::remove(library.Music(R"(Red\One\03 - Cam.mp3)"));
    Move(R"(Red\One\02 - Bay.mp3)", R"(Blue\Three\02 - Bay.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(), Contains(R"(0|Blue\Three\02 - Bay.mp3|Bay|1)"));
}

TEST_F(MovedAlbumsTest, AreNotKnownByTitlesThatTwoOthersHave) {
    fs::remove(Sounds());
    fs::copy(library.Music(R"(Red\One)"), library.Music(R"(Red\Three)"));
    Move(R"(Red\One)", R"(Red\Four)");
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("0|Red|Four|3", "0|Red|Three|3", "200|Red|Two|3"));
}

/// One song is on both albums: their titles say which is which.
TEST_F(MovedAlbumsTest, KeepSongsApartThatSoundTheSame) {
    Add(R"(Red\One\04 - Dee.mp3)", "same", 4);
    Add(R"(Red\Two\04 - Dee.mp3)", "same", 4);
    Reconcile();
    library.Database().Execute("UPDATE Tracks SET TimesPlayed = ID * 10");
    const auto before = library.Rows("SELECT ID, CDJID FROM Tracks ORDER BY ID");
    Log().clear();
    Move("Red", "Blue");
    Reconcile();
    EXPECT_EQ(library.Rows("SELECT ID, CDJID FROM Tracks ORDER BY ID"), before);
    EXPECT_THAT(Log(), SizeIs(2));
}

/// Samples agree, the rest does not: the whole sounds tell which song is which.
TEST_F(MovedAlbumsTest, KeepSongsApartWhoseSamplesSoundTheSame) {
    const auto longSound = [](char middle) {
        std::string bytes(std::size_t{200} * 1024, 'x');
        bytes[std::size_t{40} * 1024] = middle;
        return bytes;
    };
    library.AddFile(R"(Green\A\1.mp3)", longSound('a'));
    library.AddFile(R"(Green\B\2.mp3)", longSound('b'));
    Reconcile();
    library.Database().Execute("UPDATE Tracks SET TimesPlayed = ID * 10");
    Log().clear();
    Move(R"(Green\A\1.mp3)", R"(Green\C\3.mp3)");
    Move(R"(Green\B\2.mp3)", R"(Green\C\4.mp3)");
    Reconcile();
    EXPECT_THAT(Tracks(), Contains(StartsWith(R"(70|Green\C\3.mp3|3|)")));
    EXPECT_THAT(Tracks(), Contains(StartsWith(R"(80|Green\C\4.mp3|4|)")));
}

/// In the flat layout the tags say which album a file is of.
class FlatAlbumsTest : public MovedMusicFixture {
  protected:
    FlatAlbumsTest() {
        library.run.settings.FlatStructure = true;
        Tag("One", 0);
        Start();
    }

    void Tag(const std::string& album, int minutes) {
        support::RawTag tag;
        tag.album = album;
        for (const char* const song : {"a", "b", "c"}) {
            library.AddFile(std::string("Red_") + song + ".mp3",
                            Sound(song) + support::TagBytes(tag), minutes++);
        }
    }
};

TEST_F(FlatAlbumsTest, KeepTheirRowsWhenTheirTagsChange) {
    Tag("Two", 10);
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Red|Two|3"));
    EXPECT_THAT(Tracks(), ElementsAre("10|Red_a.mp3|a|1", "20|Red_b.mp3|b|2", "30|Red_c.mp3|c|3"));
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Album followed its tracks: Red\One -> Red\Two)"));
}

TEST_F(FlatAlbumsTest, KeepTheirRowsWhenTheirFilesAndTagsChange) {
    for (const char* const song : {"a", "b", "c"})
        fs::remove(library.Music(std::string("Red_") + song + ".mp3"));
    support::RawTag tag;
    tag.album = "Two";
    for (const char* const song : {"a", "b", "c"}) {
        library.AddFile(std::string("Blue_") + song + ".mp3", Sound(song) + support::TagBytes(tag));
    }
    Reconcile();
    EXPECT_THAT(Albums(), ElementsAre("100|Blue|Two|3"));
    EXPECT_THAT(Tracks(), SizeIs(3));
    EXPECT_THAT(Log(), ElementsAre("Quillon: Album followed to its new place, 3 tracks: "
                                   R"(Red\One -> Blue\Two)"));
}

/// One album has moved, and in the other two songs have swapped their names.
class MovedUnderway : public MovedMusicLibrary {
  public:
    MovedUnderway() {
        AddAlbum(R"(Red\One)", "one");
        AddAlbum(R"(Red\Two)", "two");
        Start();
        library.Database().Flush();
        Move(R"(Red\One)", R"(Blue\Three)");
        Move(R"(Red\Two\01 - Ash.mp3)", R"(Red\Two\x)");
        Move(R"(Red\Two\02 - Bay.mp3)", R"(Red\Two\01 - Ash.mp3)");
        Move(R"(Red\Two\x)", R"(Red\Two\02 - Bay.mp3)");
    }
};

POSIX_TEST(KilledRun, IsCompletedByTheNextWhereMusicHasMoved) {
    MovedUnderway undisturbed;
    undisturbed.library.Database().ForgetStatements();
    undisturbed.Reconcile();
    const std::size_t statements = undisturbed.library.Database().Count("");
    const auto tracks = undisturbed.Tracks();
    const auto albums = undisturbed.Albums();
    ASSERT_THAT(albums, ElementsAre("100|Blue|Three|3", "200|Red|Two|3"));
    ASSERT_THAT(tracks, Contains(R"(40|Red\Two\02 - Bay.mp3|Bay|1)"));
    ASSERT_GT(statements, 8U);
    for (std::size_t n = 1; n <= statements; ++n) {
        MovedUnderway trial;
        trial.library.CloseDatabase();
        EXPECT_TRUE(support::IsKilled([&] {
            trial.library.OpenDatabase();
            trial.library.Database().BeforeStatementNumber(n, [](Connection& database) {
                database.Flush();
                outside::KillThisProcess();
            });
            trial.Reconcile();
        })) << n;
        trial.library.OpenDatabase();
        trial.Reconcile();
        EXPECT_EQ(trial.Tracks(), tracks) << n;
        EXPECT_EQ(trial.Albums(), albums) << n;
    }
}

}  // namespace
}  // namespace quillon
