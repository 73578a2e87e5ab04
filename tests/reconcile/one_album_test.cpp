#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "tests/outside/posix_test.h"
#include "tests/support/real_library.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Folders and files that the database takes for one album, wherever they lie.
class OneAlbumTest : public ::testing::Test {
  protected:
    /// Reconciles twice: each album must count its tracks and number them from 1 on, and the second
    /// run must not change a row.
    void ReconcileTwice() {
        library.Reconcile();
        ExpectNumbersFromOneOn();
        const auto tracks = library.Rows("SELECT * FROM Tracks ORDER BY ID");
        const auto albums = library.Rows("SELECT * FROM Albums ORDER BY ID");
        library.run.counts = {};
        library.ReopenDatabase();
        library.Reconcile();
        EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), tracks);
        EXPECT_EQ(library.Rows("SELECT * FROM Albums ORDER BY ID"), albums);
        EXPECT_EQ(library.run.counts.tracksChanged + library.run.counts.albumsChanged, 0U);
        EXPECT_EQ(library.run.counts.tracksUnchanged, tracks.size());
        EXPECT_THAT(library.host.log, IsEmpty());
    }

    void ExpectNumbersFromOneOn() {
        for (const std::string& cdjid : library.Rows("SELECT CDJID FROM Albums")) {
            std::set<std::string> numbers, expected;
            const auto rows = library.Rows("SELECT Track FROM Tracks WHERE CDJID='" + cdjid + "'");
            for (std::size_t i = 0; i < rows.size(); ++i) {
                numbers.insert(rows[i]);
                expected.insert(std::to_string(i + 1));
            }
            EXPECT_EQ(numbers, expected) << cdjid;
            EXPECT_THAT(library.Rows("SELECT Tracks FROM Albums WHERE CDJID='" + cdjid + "'"),
                        ElementsAre(std::to_string(rows.size())));
        }
    }

    support::TestLibrary library;
};

TEST_F(OneAlbumTest, LiesInSeveralLibraryFolders) {
    library.AddFile(R"(Rock\Red\One\a.mp3)", 1);
    library.AddFile(R"(Rock\Red\One\b.mp3)", 3);
    library.AddFile(R"(Jazz\RED\one\c.mp3)", 2);
    library.AddFile(R"(Jazz\RED\Two\d.mp3)");
    library.run.LibraryFolders = {{R"(D:\Music\Rock)", "Rock"}, {R"(D:\Music\Jazz)", "Jazz"}};
    ReconcileTwice();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|3", "RED|Two|1"));
    // By the age of all its files together.
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(Jazz\RED\one\c.mp3|c|2)", R"(Jazz\RED\Two\d.mp3|d|1)",
                            R"(Rock\Red\One\a.mp3|a|1)", R"(Rock\Red\One\b.mp3|b|3)"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(OneAlbumTest, LiesInALibraryFolderThatIsNamedTwice) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.AddFile(R"(Red\One\b.mp3)");
    library.run.LibraryFolders.push_back({R"(d:\MUSIC)", "MUSIC"});
    ReconcileTwice();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|2"));
}

TEST_F(OneAlbumTest, ComesFromFlatTagsThatDifferInLetterCaseAlone) {
    library.run.settings.FlatStructure = true;
    RawTag one;
    one.album = "One";
    library.AddFile("Red_a.mp3", one, 1);
    library.AddFile("Red_b.mp3", one, 2);
    one.album = "ONE";
    library.AddFile("RED_c.mp3", one, 3);
    library.AddFile("Red_d.mp3", one, 4);
    ReconcileTwice();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|4"));
}

TEST_F(OneAlbumTest, ComesFromFlatTagsThatAreCutAtTheSamePlace) {
    library.run.settings.FlatStructure = true;
    RawTag tag;
    tag.album = "X_Y";
    library.AddFile("A_a.mp3", tag);
    tag.album = "X_Z";
    library.AddFile("A_b.mp3", tag);
    ReconcileTwice();
    EXPECT_THAT(library.Albums(), ElementsAre("A|X|2"));
}

TEST_F(OneAlbumTest, LiesFlatInSeveralLibraryFolders) {
    library.run.settings.FlatStructure = true;
    RawTag one;
    one.album = "One";
    library.AddFile(R"(Rock\Red_a.mp3)", one, 2);
    library.AddFile(R"(Jazz\Red_b.mp3)", one, 1);
    library.run.LibraryFolders = {{R"(D:\Music\Rock)", "Rock"}, {R"(D:\Music\Jazz)", "Jazz"}};
    ReconcileTwice();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|2"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Jazz\Red_b.mp3|b|1)", R"(Rock\Red_a.mp3|a|2)"));
}

/// A disk with letter case can hold both.
POSIX_TEST(OneAlbum, LiesInFoldersThatDifferInLetterCaseAlone) {
    support::RealLibrary library;
    library.AddFile(R"(Abba\Arrival\a.mp3)", 4);
    library.AddFile(R"(Abba\ARRIVAL\b.mp3)", 3);
    library.AddFile(R"(ABBA\Arrival\c.mp3)", 2);
    library.AddFile(R"(ABBA\Arrival\d.mp3)", 1);
    library.AddFile(R"(ABBA\Other\e.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Rows("SELECT Artist, Title, Tracks FROM Albums ORDER BY Tracks"),
                ElementsAre("ABBA|Other|1", "ABBA|Arrival|4"));
    EXPECT_THAT(library.Rows("SELECT Title, Track FROM Tracks ORDER BY Title"),
                ElementsAre("a|4", "b|3", "c|2", "d|1", "e|1"));
    const auto tracks = library.Rows("SELECT * FROM Tracks ORDER BY ID");
    library.Reconcile();
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), tracks);
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

/// The database cannot hold both paths; one of them is kept and the other named.
POSIX_TEST(OneAlbum, HasNoTwoFilesThatDifferInLetterCaseAlone) {
    support::RealLibrary library;
    library.AddFile(R"(Abba\Arrival\Song.mp3)", 1);
    library.AddFile(R"(Abba\Arrival\song.mp3)", 2);
    library.AddFile(R"(Abba\Arrival\SONG.MP3)", 3);
    library.AddFile(R"(Abba\Arrival\other.mp3)", 4);
    for (int i = 0; i < 2; ++i) {
        library.Reconcile();
        EXPECT_THAT(library.Rows("SELECT Tracks FROM Albums"), ElementsAre("2"));
        EXPECT_THAT(library.Rows("SELECT Track FROM Tracks ORDER BY Track"), ElementsAre("1", "2"));
    }
    EXPECT_THAT(library.host.log, SizeIs(2));
    for (const std::string& line : library.host.log)
        EXPECT_THAT(line, ::testing::HasSubstr("only letter case tells its name from that of"));
    EXPECT_EQ(library.Faults(), "");
}

/// The row may be that of either file, so it stays as it is, with all that the household has told
/// it.
POSIX_TEST(OneAlbum, KeepsItsRowsWhereANameIsThatOfAnotherFile) {
    support::RealLibrary library;
    library.AddFile(R"(Abba\Arrival\song.mp3)", 4);
    library.AddFile(R"(Abba\Arrival\other.mp3)", 3);
    library.Reconcile();
    const auto rows = library.Rows("SELECT * FROM Tracks ORDER BY ID");
    library.AddFile(R"(Abba\Arrival\SONG.mp3)", 2);
    library.Reconcile();
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), rows);
    EXPECT_THAT(library.host.log, SizeIs(1));
    std::filesystem::remove(library.Music() / "Abba/Arrival/SONG.mp3");
    library.AddFile(R"(Abba\ARRIVAL\song.mp3)", 1);
    library.Reconcile();
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), rows);
    ASSERT_THAT(library.host.log, SizeIs(2));
    EXPECT_THAT(library.host.log[1], ::testing::HasSubstr("rename one of the folders"));
    EXPECT_EQ(library.Faults(), "");
}

class AlbumWithoutIdentifierTest : public OneAlbumTest {
  protected:
    AlbumWithoutIdentifierTest() {
        library.AddFile(R"(Red\One\a.mp3)", 1);
        library.AddFile(R"(Red\One\b.mp3)", 2);
        library.AddAlbumRow("252E671073EC0041", "Blue", "One", 1);
        library.AddTrackRow("252E671073EC0041", 1, R"(D:\Music\Blue\One\a.mp3)");
        library.AddFile(R"(Blue\One\a.mp3)");
    }
};

TEST_F(AlbumWithoutIdentifierTest, GetsOne) {
    for (const char* const none : {"Null", "''"}) {
        SCOPED_TRACE(none);
        library.Execute("DELETE * FROM Albums WHERE Artist='Red'");
        library.Execute("DELETE * FROM Tracks WHERE Artist='Red'");
        library.Execute(
            "INSERT INTO Albums (Artist, Title, Tracks, Player, Rating1, CDJID) VALUES "
            "('Red', 'One', 2, 1001, 5, " +
            std::string(none) + ")");
        library.host.log.clear();
        library.run.counts = {};
        library.Reconcile();
        EXPECT_THAT(library.Rows("SELECT CDJID, Tracks, Rating1 FROM Albums WHERE Artist='Red'"),
                    ElementsAre("252E671073EC0042|2|5"));
        EXPECT_THAT(library.Rows("SELECT CDJID, Track FROM Tracks WHERE Artist='Red' ORDER BY ID"),
                    ElementsAre("252E671073EC0042|1", "252E671073EC0042|2"));
        EXPECT_THAT(library.host.log,
                    ElementsAre(R"(Quillon: Album Red\One had no CDJID, it has got )"
                                "252E671073EC0042"));
        EXPECT_EQ(library.run.counts.errors, 0U);
        EXPECT_EQ(library.run.counts.albumsChanged, 1U);

        library.run.counts = {};
        library.Reconcile();
        EXPECT_THAT(library.Rows("SELECT ID FROM Tracks"), SizeIs(3));
        EXPECT_EQ(library.run.counts.tracksAdded, 0U);
        EXPECT_EQ(library.run.counts.albumsUnchanged, 2U);
    }
}

TEST_F(AlbumWithoutIdentifierTest, GetsNoRowsWhereThereIsNoneToBeHad) {
    library.Execute(
        "INSERT INTO Albums (Artist, Title, Tracks, Player) VALUES "
        "('Red', 'One', 2, 1001)");
    const auto discs = library.run.connection->OpenTable("Albums");
    for (int number = 0; number < 10000; ++number) {
        const std::string digits = std::to_string(10000 + number).substr(1);
        if (digits == "0041") continue;
        discs->AddNew();
        discs->Set("CDJID", "252E671073EC" + digits);
        discs->Set("Player", std::int64_t{2});
        discs->Update();
    }
    library.Reconcile();
    EXPECT_THAT(library.Rows("SELECT SoundFile FROM Tracks"),
                ElementsAre(R"(D:\Music\Blue\One\a.mp3)"));
    EXPECT_THAT(library.Rows("SELECT Artist, Tracks FROM Albums WHERE Player=1001 ORDER BY Artist"),
                ElementsAre("Blue|1", "Red|2"));
    EXPECT_THAT(library.host.log,
                ElementsAre(::testing::HasSubstr("so the album is left out (Red\\One)")));
}

TEST_F(AlbumWithoutIdentifierTest, IsSweptLikeAnyOtherWhenItsFilesAreGone) {
    library.Execute(
        "INSERT INTO Albums (Artist, Title, Tracks, Player) VALUES "
        "('Green', 'One', 2, 1001)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Blue|One|1", "Red|One|2"));
}

}  // namespace
}  // namespace quillon
