#include "playlists/convert.h"

#include <gmock/gmock.h>
#include <limits>

#include "playlists/m3u.h"
#include "tests/playlists/playlist_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ConvertTest : public PlaylistTest {
  protected:
    ConvertTest() { library.Execute("UPDATE Tracks SET Minutes=3, Seconds=5"); }

    void Convert() { aPlaToM3u_Click(run()); }
    std::string M3u(const std::string& name) { return library.files.Content(R"(D:\M3u\)" + name); }
    bool M3uExists(const std::string& name) {
        return library.files.FileExists(R"(D:\M3u\)" + name);
    }

    /// The titles that a converted playlist names, in order.
    std::vector<std::string> Titles(const std::string& name) {
        std::vector<std::string> titles;
        const std::string text = M3u(name);
        for (std::size_t at = text.find(" - "); at != std::string::npos;
             at = text.find(" - ", at + 1))
            titles.push_back(text.substr(at + 3, text.find('\r', at) - at - 3));
        return titles;
    }
};

TEST(LengthInSeconds, IsMinutesAndSeconds) {
    EXPECT_EQ(LengthInSeconds(3, 5), 185);
    EXPECT_EQ(LengthInSeconds(3, 0), 180);
    EXPECT_EQ(LengthInSeconds(3, -1), 180);
}

/// Six minutes stand for whatever is unknown, and for what is shorter than a minute.
TEST(LengthInSeconds, IsSixMinutesWhereEitherIsNullOrMinutesAreNotAboveZero) {
    EXPECT_EQ(LengthInSeconds(3, std::nullopt), 360);
    EXPECT_EQ(LengthInSeconds(std::nullopt, 5), 360);
    EXPECT_EQ(LengthInSeconds(0, 45), 360);
    EXPECT_EQ(LengthInSeconds(-1, -1), 360);
}

TEST(LengthInSeconds, OverflowsBeyondSixteenBits) {
    EXPECT_EQ(LengthInSeconds(546, 7), 32767);
    EXPECT_THROW(LengthInSeconds(546, 8), Failure);
    EXPECT_THROW(LengthInSeconds(std::numeric_limits<std::int64_t>::max(), 0), Failure);
}

TEST(M3uName, ReplacesTheExtensionWhereverAndHoweverItIsWritten) {
    EXPECT_EQ(M3uName("Rock.pla"), "Rock.m3u");
    EXPECT_EQ(M3uName("Rock.PLA"), "Rock.m3u");
    EXPECT_EQ(M3uName("A.pLaying.pla"), "A.m3uying.m3u");
    EXPECT_EQ(M3uName("notes.txt"), "notes.txt");
    EXPECT_EQ(M3uName("Ölk.pla"), "Ölk.m3u");
    EXPECT_EQ(M3uName(""), "");
    EXPECT_EQ(M3uName(".pl"), ".pl");
}

TEST_F(ConvertTest, WritesTwoLinesASong) {
    AddList("Mine.pla", {"A0 0", "B0 2"});
    Convert();
    EXPECT_EQ(M3u("Mine.m3u"),
              "#EXTM3U\r\n"
              "#EXTINF:185,Ann - One\r\n"
              "D:\\Music\\A0\\One.mp3\r\n"
              "#EXTINF:185,Bob - Six\r\n"
              "D:\\Music\\B0\\Six.mp3\r\n");
    EXPECT_EQ(run().counts.playlistsWritten, 1U);
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(ConvertTest, WritesArtistAndTitleAsTheyAre) {
    library.Execute("UPDATE Tracks SET Artist='A, B - C', Title='1 - 2, 3' WHERE ID=1");
    AddList("Mine.pla", {"A0 0"});
    Convert();
    EXPECT_THAT(M3u("Mine.m3u"), HasSubstr("#EXTINF:185,A, B - C - 1 - 2, 3\r\n"));
}

TEST_F(ConvertTest, WritesAllTracksOfAWholeAlbum) {
    AddAlbum("L0", "Ell", {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"});
    Renumber("a", 30);
    AddList("Mine.pla", {"L0 -1"});
    Convert();
    EXPECT_THAT(Titles("Mine.m3u"),
                ElementsAre("a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"));
}

TEST_F(ConvertTest, PassesOverTracksOfAnAlbumThatHaveNoNumber) {
    library.Execute("UPDATE Tracks SET Track=Null WHERE Title='Two'");
    AddList("Mine.pla", {"A0 -1"});
    Convert();
    EXPECT_THAT(Titles("Mine.m3u"), ElementsAre("One", "Three"));
}

TEST_F(ConvertTest, DropsWhatIsNoEntryWithoutAWord) {
    AddList("Mine.pla", {"A0  0", "A0 0 ", " A0 0", "A0", "", "A0 0 x", "C0 0", "A0 7", "C0 -1",
                         "A0 -5", "A0 99999", "A0 1"});
    Convert();
    EXPECT_THAT(Titles("Mine.m3u"), ElementsAre("Two"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(ConvertTest, LogsPositionsThatAreNoNumbersAndGoesOn) {
    AddList("Mine.pla", {"A0 x", "A0 99999999999", "A0 1"});
    Convert();
    EXPECT_THAT(Titles("Mine.m3u"), ElementsAre("Two"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: PlaToM3u Line 5 Type mismatch: x (D:\\Lists\\Mine.pla)",
                            "Quillon: PlaToM3u Line 5 Overflow: 99999999999 "
                            "(D:\\Lists\\Mine.pla)"));
}

TEST_F(ConvertTest, MatchesIdentifiersWithApostrophesAsTheyAre) {
    AddAlbum("C''0", "Cee", {"Seven"});
    AddList("Rock'n'Roll.pla", {"C''0 0", "C'0 -1", "C' 0"});
    library.Execute("UPDATE Tracks SET CDJID=\"C'0\" WHERE Title='Seven'");
    Convert();
    EXPECT_THAT(Titles("Rock'n'Roll.m3u"), ElementsAre("Seven"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(ConvertTest, MakesNothingOfAPlaylistWithoutEntries) {
    AddList("Header.pla", {});
    library.files.AddFile(R"(D:\Lists\Empty.pla)", "");
    library.files.AddFile(R"(D:\M3u\Header.m3u)", "older");
    Convert();
    EXPECT_EQ(M3u("Header.m3u"), "older");
    EXPECT_FALSE(M3uExists("Empty.m3u"));
}

TEST_F(ConvertTest, MakesAnEmptyListWhereNoEntryIsAnyGood) {
    AddList("Mine.pla", {"nonsense"});
    Convert();
    EXPECT_EQ(M3u("Mine.m3u"), "#EXTM3U\r\n");
}

TEST_F(ConvertTest, ReplacesAnOlderFile) {
    library.files.AddFile(R"(D:\M3u\Mine.m3u)", "older and much longer than what replaces it");
    AddList("Mine.pla", {"C0 0"});
    Convert();
    EXPECT_EQ(M3u("Mine.m3u"), "#EXTM3U\r\n");
}

TEST_F(ConvertTest, ReadsFilesOfAnyExtension) {
    AddList("Rock.PLA", {"A0 0"});
    AddList("notes.txt", {"A0 1"});
    Convert();
    EXPECT_THAT(Titles("Rock.m3u"), ElementsAre("One"));
    EXPECT_THAT(Titles("notes.txt"), ElementsAre("Two"));
}

TEST_F(ConvertTest, LeavesAFileAloneThatWouldBeReplacedByItself) {
    run().settings.PlayListPath2 = R"(d:\lists\)";
    AddList("notes.txt", {"A0 0"});
    AddList("Mine.pla", {"A0 0"});
    Convert();
    EXPECT_THAT(Lines("notes.txt"), ElementsAre("A0 0"));
    EXPECT_TRUE(ListExists("Mine.m3u"));
    EXPECT_THAT(
        library.host.log,
        ElementsAre(R"(Quillon: PlaToM3u: D:\Lists\notes.txt would be replaced by itself)"));
}

/// Without its path line the first one would make players look for a file of the next song's name.
TEST_F(ConvertTest, WritesNoLinesForASongWithoutASoundFile) {
    library.Execute("UPDATE Tracks SET SoundFile=Null WHERE Title='One'");
    AddList("Mine.pla", {"A0 0", "A0 1"});
    Convert();
    EXPECT_THAT(Titles("Mine.m3u"), ElementsAre("Two"));
}

TEST_F(ConvertTest, CostsOneSongWhenTheDatabaseRefusesIt) {
    library.Execute("UPDATE Tracks SET Minutes=600 WHERE Title='One'");
    AddList("Mine.pla", {"A0 0", "A0 1"});
    Convert();
    EXPECT_THAT(Titles("Mine.m3u"), ElementsAre("Two"));
    EXPECT_THAT(library.host.log,
                ElementsAre(HasSubstr("WriteM3uTrack cdjid=A0, tracknum=1 Line 0 Overflow")));
}

TEST_F(ConvertTest, CostsOneAlbumWhenTheDatabaseRefusesIt) {
    AddList("Mine.pla", {"A0 -1", "B0 1"});
    library.Database().Refuse("SELECT Track FROM Tracks WHERE cdjid='A0'");
    Convert();
    EXPECT_THAT(Titles("Mine.m3u"), ElementsAre("Five"));
    EXPECT_THAT(library.host.log, ElementsAre(HasSubstr("PlaToM3u Line 5 refused")));
}

TEST_F(ConvertTest, CostsOneFileThatCannotBeReadOrWritten) {
    AddList("A.pla", {"A0 0"});
    AddList("B.pla", {"A0 0"});
    AddList("C.pla", {"A0 0"});
    library.calls.Refuse(R"(OpenBinary D:\Lists\A.pla)", FailureNumber::PermissionDenied, "A");
    library.calls.Refuse(R"(CreateText D:\M3u\B.m3u)", FailureNumber::PathNotFound, "B");
    Convert();
    EXPECT_FALSE(M3uExists("A.m3u"));
    EXPECT_FALSE(M3uExists("B.m3u"));
    EXPECT_TRUE(M3uExists("C.m3u"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: PlaToM3u Line 2 Permission denied: A (D:\\Lists\\A.pla)",
                            "Quillon: PlaToM3u Line 2 Path not found: B (D:\\Lists\\B.pla)"));
}

TEST_F(ConvertTest, CostsOneFileThatCannotGetItsName) {
    for (const char* const name : {"A.pla", "B.pla", "C.pla"})
        AddList(name, {"A0 0"});
    library.calls.Refuse(R"(Name D:\M3u\B.m3u)", FailureNumber::PermissionDenied, "B");
    Convert();
    EXPECT_TRUE(M3uExists("A.m3u"));
    EXPECT_FALSE(M3uExists("B.m3u"));
    EXPECT_TRUE(M3uExists("C.m3u"));
    EXPECT_EQ(run().counts.playlistsWritten, 2U);
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: PlaToM3u Line 2 Permission denied: B (D:\\Lists\\B.pla)"));
}

TEST_F(ConvertTest, GivesFilesTheirNamesTogetherAndOneThatIsMadeTwiceInBetween) {
    AddList("Both.m3u.txt", {"A0 0"});
    AddList("Both.pla.txt", {"A0 1"});
    AddList("Other.pla", {"A0 0"});
    Convert();
    EXPECT_THAT(library.calls.Of({"CreateText", "Name"}),
                ElementsAre(R"(CreateText D:\M3u\Both.m3u.txt)", R"(Name D:\M3u\Both.m3u.txt)",
                            R"(CreateText D:\M3u\Both.m3u.txt)", R"(CreateText D:\M3u\Other.m3u)",
                            R"(Name D:\M3u\Both.m3u.txt)", R"(Name D:\M3u\Other.m3u)"));
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_THAT(Titles("Both.m3u.txt"), ElementsAre("Two"));
    EXPECT_EQ(run().counts.playlistsWritten, 3U);
}

TEST_F(ConvertTest, LogsAFolderThatIsNotThere) {
    library.calls.Refuse(R"(FilesIn D:\Lists)", FailureNumber::PathNotFound, "Lists");
    Convert();
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: aPlaToM3u_Click Line 1 Path not found: Lists"));
}

TEST_F(ConvertTest, StopsBeforeTheNextFileWhenAborted) {
    AddList("A.pla", {"A0 0"});
    AddList("B.pla", {"A0 0"});
    library.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem == "1. Playlist A.pla"; });
    Convert();
    EXPECT_TRUE(M3uExists("A.m3u")) << "the file in hand is finished";
    EXPECT_FALSE(M3uExists("B.m3u"));
}

TEST(M3u8Name, IsThatOfTheOtherFileWithItsOwnExtension) {
    EXPECT_EQ(M3u8Name("Rock.m3u"), "Rock.m3u8");
    EXPECT_EQ(M3u8Name("Rock.M3U"), "Rock.M3U8");
    EXPECT_EQ(M3u8Name("notes.txt"), "notes.txt.m3u8");
}

/// A song in letters that the code page lacks.
class Utf8ListTest : public ConvertTest {
  protected:
    Utf8ListTest() {
        library.Execute(R"(UPDATE Tracks SET SoundFile='D:\Music\初恋.mp3' WHERE Title='One')");
        library.Execute("UPDATE Tracks SET Artist='Âme' WHERE Title='Two'");
        AddList("Mine.pla", {"A0 0", "A0 1"});
        Convert();
    }

    void GiveItAUsualPath() {
        library.Execute(R"(UPDATE Tracks SET SoundFile='D:\Music\x.mp3' WHERE Title='One')");
        library.host.log.clear();
        library.calls.Forget();
    }
};

TEST_F(Utf8ListTest, HasAllSongsAndTheOtherSaysWhichItLacks) {
    EXPECT_EQ(M3u("Mine.m3u8"),
              "#EXTM3U\r\n"
              "#EXTINF:185,Ann - One\r\nD:\\Music\\初恋.mp3\r\n"
              "#EXTINF:185,Âme - Two\r\nD:\\Music\\A0\\Two.mp3\r\n");
    EXPECT_EQ(M3u("Mine.m3u"), "#EXTM3U\r\n#EXTINF:185,\xC2me - Two\r\nD:\\Music\\A0\\Two.mp3\r\n");
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: PlaToM3u: D:\M3u\Mine.m3u lacks 1 song, whose path it )"
                            R"(cannot hold; D:\M3u\Mine.m3u8 has all: D:\Music\初恋.mp3)"));
    EXPECT_EQ(run().counts.playlistsWritten, 2U);
}

TEST_F(Utf8ListTest, IsMadeOnlyWhereItIsNeeded) {
    AddList("Other.pla", {"A0 1"});
    Convert();
    EXPECT_FALSE(M3uExists("Other.m3u8"));
}

TEST_F(Utf8ListTest, IsKeptTrueWhenItIsNotNeededAnyMore) {
    GiveItAUsualPath();
    Convert();
    EXPECT_THAT(M3u("Mine.m3u8"), HasSubstr("D:\\Music\\x.mp3"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(Utf8ListTest, TellsOfManyInOneLine) {
    library.host.log.clear();
    library.Execute(R"(UPDATE Tracks SET SoundFile='D:\Music\恋' & ID & '.mp3')");
    AddAlbum("L0", "Ell", {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"});
    library.Execute(R"(UPDATE Tracks SET SoundFile='D:\恋\' & ID & '.mp3' WHERE CDJID='L0')");
    AddList("Mine.pla", {"L0 -1"});
    Convert();
    EXPECT_THAT(library.host.log, ElementsAre(HasSubstr("lacks 12 songs, whose paths it cannot")));
    EXPECT_THAT(library.host.log[0], HasSubstr(" and 2 more"));
}

TEST_F(ConvertTest, WritesNothingASecondTime) {
    AddList("Mine.pla", {"A0 0"});
    Convert();
    library.calls.Forget();
    Convert();
    EXPECT_THAT(library.calls.Of({"CreateText"}), IsEmpty());
    EXPECT_EQ(run().counts.playlistsWritten, 1U);
}

/// Only a playlist's own name says that what it leads to is the tool's.
TEST_F(ConvertTest, ReplacesNoOtherTextByAListOfItsName) {
    AddList("notes.txt", {"A0 1"});
    library.files.AddFile(R"(D:\M3u\notes.txt)", "my notes");
    Convert();
    EXPECT_EQ(M3u("notes.txt"), "my notes");
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: PlaToM3u: D:\M3u\notes.txt is not a playlist, so )"
                            R"(D:\Lists\notes.txt is not converted)"));
    library.files.AddFile(R"(D:\M3u\notes.txt)", "#EXTM3U\r\n");
    Convert();
    EXPECT_THAT(Titles("notes.txt"), ElementsAre("Two"));
}

TEST_F(ConvertTest, ConvertsNothingInTheOppositeDirection) {
    library.files.AddFile(R"(D:\M3u\Mine.m3u)", "#EXTM3U\r\nD:\\Music\\A0\\One.mp3\r\n");
    M3uToPla(run());
    EXPECT_THAT(library.calls.Of({"OpenText", "OpenBinary", "CreateText", "FilesIn"}), IsEmpty());
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(ConvertTest, WritesAListForThisMachineBesideEachWhereThatIsAskedFor) {
    AddList("Rock.pla", {"A0 0"});
    run().modern.writesLocalLists = true;
    Convert();
    EXPECT_EQ(M3u("Rock.m3u8").substr(0, 8), "#EXTM3U\n");
    EXPECT_THAT(M3u("Rock.m3u8"), HasSubstr("\n../Music/"));
    EXPECT_THAT(M3u("Rock.m3u"), HasSubstr("\r\nD:\\Music\\"));
    EXPECT_EQ(run().counts.playlistsWritten, 2U);
    Convert();
    EXPECT_EQ(run().counts.playlistsWritten, 2U) << "nothing has changed";
}

TEST_F(ConvertTest, NamesThePathsThatLeadNowhereOnThisMachine) {
    AddList("Rock.pla", {"A0 0"});
    library.Execute("UPDATE Tracks SET SoundFile='Y:\\Music\\a.mp3'");
    run().modern.writesLocalLists = true;
    Convert();
    EXPECT_THAT(
        library.host.log,
        ElementsAre("Quillon: PlaToM3u: D:\\M3u\\Rock.m3u8 has 1 path that leads nowhere on "
                    "this machine, such as Y:\\Music\\a.mp3. If that is music, name its drive "
                    "in [Drives] of host.ini"));
}

}  // namespace
}  // namespace quillon
