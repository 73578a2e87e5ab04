#include <algorithm>
#include <gtest/gtest.h>

#include "tests/app/check_fixture.h"

namespace quillon {
namespace {

class CheckSettings : public CheckFixture {
  protected:
    std::string Table() const {
        return Section(Check().out, "Settings (Quillon.ini, section NPFrame)");
    }
};

TEST_F(CheckSettings, TellsEverySettingAndWhereItsValueComesFrom) {
    Set("ImagesWide", "7");
    std::string file = Read("shelf/Quillon.ini");
    Write("shelf/Quillon.ini", file.replace(file.find("\nGenrePlaylist=1"), 16, ""));
    const std::string table = Table();
    EXPECT_TRUE(
        table.starts_with("  Setting                Value                  Source   Remark\n"
                          "  ---------------------  ---------------------  -------  ------\n"
                          "  FromFilesPath          (empty)                file\n"))
        << table;
    EXPECT_EQ(std::ranges::count(table, '\n') + 1, 2 + 33);
    EXPECT_TRUE(Has(table, "  ImagesWide             7                      file\n"));
    EXPECT_TRUE(Has(table, "  GenrePlaylist          True                   default\n"));
    EXPECT_TRUE(Has(table, "  LibraryRoot            D:\\Music               file\n"));
}

TEST_F(CheckSettings, KeepsItsColumnsBesideALongValue) {
    const std::string path = "D:\\Musik für die Küche\\und alle anderen Zimmer des Hauses";
    Set("LibraryRoot", path);
    EXPECT_TRUE(Has(Table(), "  LibraryRoot            " + path +
                                 "\n                                                     file\n"))
        << Table();
    EXPECT_TRUE(Has(Table(), "  PlayListPath           H:\\Playlists\\               file\n"));
}

TEST_F(CheckSettings, RemarksOnWhatCannotBeReadOrCountsAsSomethingElse) {
    Set("ImagesHigh", "abc");
    Set("ArtistThreshold", "a few of them, not all");
    Set("MaxPlaylistLength", "40000");
    Set("RandomizePlaylist", "yes");
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(
        Has(Table(), "  ImagesHigh             abc                    file    not a number\n"));
    EXPECT_TRUE(
        Has(Table(),
            "  ArtistThreshold        0                      file    not a number: a few …\n"));
    EXPECT_TRUE(Has(
        Table(), "  MaxPlaylistLength      0                      file    out of range: 40000\n"));
    EXPECT_TRUE(
        Has(Table(), "  RandomizePlaylist      False                  file    not 0 or 1: yes"));
    EXPECT_EQ(Problems(),
              "  - Setting ImagesHigh=abc is not a number and no run starts with it. Write a whole "
              "number from -32768 to 32767, or delete the line to get the default 3.");
}

TEST_F(CheckSettings, ASettingThatCountsAsSomethingElseIsNoProblem) {
    Set("ArtistThreshold", "abc");
    Set("RandomizePlaylist", "yes");
    EXPECT_EQ(Check().status, 0);
    EXPECT_EQ(
        Cautions(),
        "  - Setting ArtistThreshold=abc is not a number and counts as 0. Write a whole number "
        "from -32768 to 32767, or delete the line to get the default 0.\n"
        "  - Setting RandomizePlaylist=yes is not 0 or 1 and counts as False. Write 0 or 1, "
        "or delete the line to get the default 0.");
}

TEST_F(CheckSettings, TellsThatPlaylistsOnlySwitchesReconcileOn) {
    Set("Reconcile", "0");
    Set("PlaylistsOnly", "1");
    EXPECT_EQ(Check().status, 0);
    EXPECT_TRUE(Has(Table(),
                    "  Reconcile              False                  file    on: PlaylistsOnly\n"));
}

TEST_F(CheckSettings, TellsTheHostsOwnSettings) {
    EXPECT_EQ(Section(Check().out, "Host settings (host.ini)"),
              "  Download Host          localhost\n"
              "  Covers ScanLibrary     False\n"
              "  Covers ReservedFolder  (empty)");
}

TEST_F(CheckSettings, CautionsAgainstADownloadHostWithAHyphen) {
    Write("shelf/host.ini", "[Plugins]\nQuillon=1\n[Drives]\nD=" + Folder().string() +
                                "\nH=.\n[Download]\nHost=my-radio\n"
                                "[Covers]\nScanLibrary=yes\nReservedFolder=Scans\n");
    EXPECT_EQ(Section(Check().out, "Host settings (host.ini)"),
              "  Download Host          my-radio\n"
              "  Covers ScanLibrary     True\n"
              "  Covers ReservedFolder  Scans");
    EXPECT_TRUE(Has(Cautions(), "Host my-radio of [Download]"));
    EXPECT_EQ(Check().status, 0);
}

TEST_F(CheckSettings, SuggestsTheKeyThatAMisspeltOneMayMean) {
    Write("shelf/Quillon.ini",
          Read("shelf/Quillon.ini") + "LibaryRoot=D:\\\nAlbumPickr=1\nColour=red\nSize=5\n");
    EXPECT_EQ(Check().status, 0);
    EXPECT_EQ(Cautions(),
              "  - Quillon.ini has LibaryRoot=D:\\, which nothing reads. If LibraryRoot is meant, "
              "correct the name.\n"
              "  - Quillon.ini has AlbumPickr=1, which nothing reads. If AlbumPicker is meant, "
              "correct the name.\n"
              "  - Quillon.ini has keys in [NPFrame] that nothing reads: Colour, Size.");
}

TEST_F(CheckSettings, TellsWhichOfTwoLinesCounts) {
    const std::string file = Read("shelf/Quillon.ini");
    Write("shelf/Quillon.ini", file + "reconcile = 1\n[Other]\nReconcile=0\n");
    EXPECT_EQ(Cautions(), "");
    Write("shelf/Quillon.ini",
          file + "[Other]\nReconcile=5\n[NPFrame]\nreconcile = 0\nReconcile=0\n");
    EXPECT_EQ(
        Cautions(),
        "  - Quillon.ini has Reconcile=1 and further down reconcile = 0. The first one counts. "
        "Delete the other.");
}

TEST_F(CheckSettings, AMisspeltNameThatLeavesADangerousDefaultIsAProblem) {
    const std::string file = Read("shelf/Quillon.ini");
    const auto with = [&](const std::string& line) {
        std::string changed = file;
        Write("shelf/Quillon.ini", changed.replace(file.find("\nID3Reconcile=0") + 1, 14, line));
    };
    for (const std::string line : {"ID3Reconcil=0", "id3reconcille = 0", "ID3Reconcile: 0"}) {
        with(line);
        EXPECT_EQ(Check().status, 2) << line;
        EXPECT_EQ(Problems(),
                  "  - Quillon.ini has the line " + line +
                      ", which nothing reads. If ID3Reconcile is meant, correct it: without that "
                      "setting a run renames and removes files by their tags. If not, write "
                      "ID3Reconcile=0 or =1 as well.");
        EXPECT_EQ(Cautions(), "");
    }
    with("ID3Reconcil=0\nID3Reconcile=1");
    EXPECT_EQ(Check().status, 0);
    EXPECT_TRUE(Has(Cautions(), "If ID3Reconcile is meant, correct the name"));
    with("ID3Reconcil=0");
    Set("PlaylistsOnly", "1");
    EXPECT_EQ(Check().status, 0) << "no tag is looked at then";
    EXPECT_TRUE(Has(Cautions(), "If ID3Reconcile is meant, correct the name"));
}

TEST_F(CheckSettings, SaysNothingOfKeysInOtherSectionsAndOtherLetterCases) {
    std::string file = Read("shelf/Quillon.ini");
    file.replace(file.find("\nImagesWide="), 12, "\nIMAGESwide=");
    Write("shelf/Quillon.ini", file + "[Other]\nLibaryRoot=1\n");
    EXPECT_EQ(Cautions(), "");
}

TEST_F(CheckSettings, WarnsOfPagesWithMoreAlbumsThanCanBeCounted) {
    Set("ImagesWide", "200");
    Set("ImagesHigh", "163");
    EXPECT_EQ(Cautions(), "");
    Set("ImagesHigh", "164");
    EXPECT_TRUE(Has(Cautions(), "ImagesWide=200 and ImagesHigh=164 make more than 32767 albums"));
    EXPECT_EQ(Check().status, 0) << "a reconciliation makes no pages";
    Choose("AlbumPicker");
    EXPECT_TRUE(Has(Problems(), "ImagesWide=200 and ImagesHigh=164 make more than 32767 albums"));
    EXPECT_EQ(Check().status, 2);
}

TEST_F(CheckSettings, WarnsOfPagesWithoutRoomForAnAlbum) {
    for (const char* const size : {"0", "-3"}) {
        Set("ImagesWide", size);
        EXPECT_TRUE(Has(Cautions(), "leave no room for an album")) << size;
    }
}

TEST_F(CheckSettings, TellsWhatAPickerMinimumBelowOneDoes) {
    for (const char* const minimum : {"0", "-1"}) {
        Set("PickerMinimum", minimum);
        EXPECT_TRUE(Has(Cautions(), "leaves no album out")) << minimum;
    }
    Set("PickerMinimum", "1");
    EXPECT_EQ(Cautions(), "");
}

TEST_F(CheckSettings, TellsWhatAPlaylistLengthBelowOneDoes) {
    Set("MaxPlaylistLength", "0");
    EXPECT_TRUE(Has(Cautions(), "each track of a genre or artist gets a playlist file of its own"));
    Set("MaxPlaylistLength", "-5");
    EXPECT_TRUE(Has(Cautions(),
                    "MaxPlaylistLength=-5: the first playlist of each genre or artist "
                    "stays empty"));
    Set("GenrePlaylist", "0");
    Set("ArtistPlaylist", "0");
    EXPECT_EQ(Cautions(), "") << "no playlists are made";
}

}  // namespace
}  // namespace quillon
