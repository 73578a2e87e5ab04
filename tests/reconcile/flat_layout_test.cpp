#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reconcile/refresh_database.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

RawTag OfAlbum(const std::string& album) {
    RawTag tag;
    tag.album = album;
    return tag;
}

/// What AddFiles has put into a folder.
constexpr const char* Added = R"(D:\Music\Birch\Two\n.mp3)";

class FlatLayoutTest : public ::testing::Test {
  protected:
    FlatLayoutTest() { library.run.settings.FlatStructure = true; }

    support::TestLibrary library;
};

TEST_F(FlatLayoutTest, GroupsFilesByArtistAndTagsAlbum) {
    library.AddFile("Red_a.mp3", OfAlbum("One"));
    library.AddFile("Red_b.mp3", OfAlbum("One"));
    library.AddFile("Red_c.mp3", OfAlbum("Two"));
    library.AddFile("Blue_d.mp3", OfAlbum("One"));
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Blue|One|1", "Red|One|2", "Red|Two|1"));
    EXPECT_THAT(library.Tracks(),
                ElementsAre("Blue_d.mp3|d|1", "Red_a.mp3|a|1", "Red_b.mp3|b|2", "Red_c.mp3|c|1"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(FlatLayoutTest, PutsAFileWithoutATagIntoTheAlbumUnknown) {
    library.AddFile("Artist_Song.mp3");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Unknown|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre("Artist_Song.mp3|Song|1"));
}

TEST_F(FlatLayoutTest, TakesAnEmptyAlbumOfATagAsItIs) {
    library.AddFile("Artist_Song.mp3", OfAlbum(""));
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Artist||1"));
}

TEST_F(FlatLayoutTest, CutsAnAlbumAtAnUnderscoreOfItsOwn) {
    library.AddFile("A_B_C.mp3", OfAlbum("X_Y"));
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("A|X|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre("A_B_C.mp3|C|1"));
}

TEST_F(FlatLayoutTest, SkipsFilesWithoutAnUnderscoreAndAllFolders) {
    library.AddFile("Song.mp3");
    library.AddFile(R"(Artist\Album_1\a_b.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), IsEmpty());
}

TEST_F(FlatLayoutTest, KeepsAnEndingInCapitalsInTheTitle) {
    library.AddFile("Artist_Title.MP3");
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre("Artist_Title.MP3|Title.MP3|1"));
}

TEST_F(FlatLayoutTest, MovesATrackWhoseTagNamesAnotherAlbumNow) {
    library.AddFile("Red_a.mp3", OfAlbum("One"));
    library.Reconcile();
    library.Execute("UPDATE Tracks SET Rating1=5");
    library.AddFile("Red_a.mp3", OfAlbum("Two"));
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|Two|1"));
    EXPECT_THAT(library.Rows("SELECT CDJID, Rating1 FROM Tracks"),
                ElementsAre("252E671073EC0002|5"));
}

TEST_F(FlatLayoutTest, ShowsNoProgressAndUsesNoExcludeValuesAndDoesNotTestAbort) {
    library.AddFile("Red_a.mp3");
    library.AddFile("Blue_a.mp3");
    library.run.ExcludeEmpty = false;
    library.run.ExcludeList = {"Blue"};
    library.run.AbortRequested = true;
    library.Reconcile();
    EXPECT_THAT(library.calls.Of({"Item"}), IsEmpty());
    EXPECT_THAT(library.Albums(), ElementsAre("Blue|Unknown|1", "Red|Unknown|1"));
}

TEST_F(FlatLayoutTest, KeepsTheRowsOfFilesWhoseTagsAlbumHoldsADoubleQuote) {
    library.AddFile("Red_a.mp3", OfAlbum("One"));
    library.Reconcile();
    library.AddFile("Red_a.mp3", OfAlbum("12\" One"));
    library.Reconcile();
    EXPECT_THAT(library.host.log, ElementsAre(StartsWith("Quillon: ProcessOneAlbum Line 2 ")));
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre("Red_a.mp3|a|1"));
}

TEST_F(FlatLayoutTest, LogsAFileNameWithADoubleQuote) {
    library.AddFile("Red_12\".mp3");
    library.AddFile("Red_a.mp3");
    library.Reconcile();
    EXPECT_THAT(library.host.log,
                ElementsAre(StartsWith("Quillon: ProcessTracks Line 1 "),
                            R"(Quillon: Reconcile Track Number 2 Missing from Red\Unknown)"));
    EXPECT_THAT(library.Tracks(), ElementsAre("Red_a.mp3|a|1"));
}

TEST_F(FlatLayoutTest, KeepsAllRowsOfAFolderThatCannotBeListed) {
    library.AddFile("Red_a.mp3", OfAlbum("One"));
    library.AddFile("Red_b.mp3", OfAlbum("One"));
    library.Reconcile();
    const auto albums = library.Albums(), tracks = library.Tracks();
    library.files.unlistable = {R"(D:\Music)"};
    library.Reconcile();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: RefreshDatabaseFolder Line 3 "
                                              R"(Permission denied: D:\Music)"));
    EXPECT_EQ(library.Albums(), albums);
    EXPECT_EQ(library.Tracks(), tracks);
}

/// AddFiles makes folders in this layout, too, and the comparison of tags goes into them.
TEST_F(FlatLayoutTest, WhatOnlyTheComparisonOfTagsFindsWaitsWithItsAlbum) {
    library.run.movedMusic.KeepDays = 14;
    library.AddFile("Red_a.mp3", OfAlbum("One"));
    library.Reconcile();
    library.AddAlbumRow("7", "Birch", "Two", 1);
    library.AddTrackRow("7", 1, Added);
    const auto reconcile = [this] {
        library.host.log.clear();
        library.run.ForgetTables();
        library.run.TheLibrary().FindTrack(Added)->tagNumber = 1;
        RefreshDatabase(library.run);
        EXPECT_THAT(library.Albums(), ElementsAre("Birch|Two|0", "Red|One|1"));
        EXPECT_THAT(library.Tracks(),
                    ElementsAre(R"(Birch\Two\n.mp3|old title|0)", "Red_a.mp3|a|1"));
    };
    reconcile();
    EXPECT_THAT(
        library.host.log,
        ElementsAre(R"(Quillon: Album is missing, it is kept for 14 days: Birch\Two, 1 track)"));
    reconcile();
    EXPECT_THAT(library.host.log, IsEmpty());
}

/// As long as nothing waits, a track keeps the number that its tag says, and so its row.
TEST_F(FlatLayoutTest, WhatOnlyTheComparisonOfTagsFindsKeepsItsNumber) {
    library.AddFile("Red_a.mp3", OfAlbum("One"));
    library.AddAlbumRow("7", "Birch", "Two", 1);
    library.AddTrackRow("7", 1, Added);
    library.run.TheLibrary().FindTrack(Added)->tagNumber = 3;
    RefreshDatabase(library.run);
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Birch\Two\n.mp3|old title|3)", "Red_a.mp3|a|1"));
}

TEST_F(FlatLayoutTest, ReadsTheTagOfEachFileOnce) {
    RawTag tag = OfAlbum("One");
    tag.track = 2;
    tag.comment = "Length='245'";
    library.AddFile("Red_a.mp3", tag);
    tag.track = 1;
    library.AddFile("Red_b.mp3", tag);
    library.Reconcile();
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), ElementsAre(R"(OpenBinary D:\Music\Red_a.mp3)",
                                                              R"(OpenBinary D:\Music\Red_b.mp3)"));
    EXPECT_THAT(library.Tracks(), ElementsAre("Red_a.mp3|a|2", "Red_b.mp3|b|1"));
    EXPECT_THAT(library.Rows("SELECT Minutes, Seconds FROM Tracks"), ElementsAre("4|5", "4|5"));
}

TEST_F(FlatLayoutTest, TheThirdRunChangesNothing) {
    for (int i = 0; i < 9; ++i) {
        RawTag tag = OfAlbum(i % 2 == 0 ? "Even" : "Odd");
        tag.track = static_cast<std::uint8_t>(9 - i);
        library.AddFile("Artist_" + std::to_string(i) + ".mp3", tag, i);
    }
    library.Reconcile();
    library.Reconcile();
    const auto second = library.Rows("SELECT * FROM Tracks ORDER BY ID");
    library.Reconcile();
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), second);
}

}  // namespace
}  // namespace quillon
