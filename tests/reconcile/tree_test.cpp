#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TreeTest : public ::testing::Test {
  protected:
    void Exclude(const std::vector<std::string>& values) {
        library.run.ExcludeEmpty = false;
        library.run.ExcludeList = values;
    }

    support::TestLibrary library;
};

TEST_F(TreeTest, MakesAnAlbumForEachAlbumFolderWithItsFiles) {
    library.AddFile(R"(Red\One\01 - a.mp3)");
    library.AddFile(R"(Red\One\02 - b.mp3)");
    library.AddFile(R"(Red\Two\01 - c.mp3)");
    library.AddFile(R"(Blue\One\01 - d.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Blue|One|1", "Red|One|2", "Red|Two|1"));
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(Blue\One\01 - d.mp3|d|1)", R"(Red\One\01 - a.mp3|a|1)",
                            R"(Red\One\02 - b.mp3|b|2)", R"(Red\Two\01 - c.mp3|c|1)"));
    EXPECT_THAT(
        library.Rows("SELECT Title, CDJID FROM Albums ORDER BY ID"),
        ElementsAre("One|252E671073EC0001", "One|252E671073EC0002", "Two|252E671073EC0003"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(TreeTest, CountsFilesWhoseEndingIsInCapitals) {
    library.AddFile(R"(Red\One\a.MP3)");
    library.AddFile(R"(Red\One\b.Mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|2"));
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(Red\One\a.MP3|a.MP3|1)", R"(Red\One\b.Mp3|b.Mp3|2)"));
}

TEST_F(TreeTest, LooksAtNoOtherFilesAndNoDeeperFolders) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.AddFile(R"(Red\One\cover.jpg)");
    library.AddFile(R"(Red\One\Disc 2\b.mp3)");
    library.AddFile(R"(Red\loose.mp3)");
    library.AddFile("top.mp3");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Red\One\a.mp3|a|1)"));
}

TEST_F(TreeTest, MakesNoRowForAnAlbumFolderWithoutSoundFiles) {
    library.AddFolder(R"(Red\Empty)");
    library.AddFile(R"(Red\Pictures\a.jpg)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), IsEmpty());
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(TreeTest, SweepsTheRowOfAnAlbumFolderThatHasNoSoundFilesAnyMore) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.AddFile(R"(Red\Two\b.mp3)");
    library.Reconcile();
    library.RemoveFile(R"(Red\One\a.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|Two|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Red\Two\b.mp3|b|1)"));
    EXPECT_EQ(library.run.counts.albumsRemoved, 1U);
    EXPECT_EQ(library.run.counts.tracksRemoved, 1U);
}

TEST_F(TreeTest, SweepsTheRowsOfAVanishedFolder) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.AddAlbumRow("252E671073EC0500", "Gone", "Album", 2);
    library.AddTrackRow("252E671073EC0500", 1, R"(D:\Music\Gone\Album\1.mp3)");
    library.AddTrackRow("252E671073EC0500", 2, R"(D:\Music\Gone\Album\2.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Red\One\a.mp3|a|1)"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(TreeTest, ReplacesTheRowOfARenamedFile) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.Reconcile();
    library.RemoveFile(R"(Red\One\a.mp3)");
    library.AddFile(R"(Red\One\b.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Red\One\b.mp3|b|1)"));
}

TEST_F(TreeTest, ShowsACountedLineForEachArtist) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.AddFile(R"(Blue\One\a.mp3)");
    library.AddFolder("Green");
    Exclude({"Green"});
    library.Reconcile();
    EXPECT_THAT(library.calls.Of({"Item"}),
                ElementsAre("Item 1. Reconcile Folder Tracks with Database for Artist Blue",
                            "Item 2. Reconcile Folder Tracks with Database for Artist Green",
                            "Item 3. Reconcile Folder Tracks with Database for Artist Red"));
}

TEST_F(TreeTest, BeginsTheCountAgainForEachLibraryFolder) {
    library.AddFile(R"(Rock\Red\One\a.mp3)");
    library.AddFile(R"(Jazz\Blue\One\a.mp3)");
    library.run.LibraryFolders = {{R"(D:\Music\Rock)", "Rock"}, {R"(D:\Music\Jazz)", "Jazz"}};
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Blue|One|1", "Red|One|1"));
    EXPECT_THAT(library.calls.Of({"Item"}),
                ElementsAre("Item 1. Reconcile Folder Tracks with Database for Artist Red",
                            "Item 1. Reconcile Folder Tracks with Database for Artist Blue"));
}

TEST_F(TreeTest, SkipsAnExcludedArtistInAnyLetterCase) {
    library.AddFile(R"(Blue\One\a.mp3)");
    library.AddFile(R"(Red\One\a.mp3)");
    Exclude({"green", "bLUE"});
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|1"));
}

TEST_F(TreeTest, ComparesExcludeValuesWithTheirBlanks) {
    library.AddFile(R"(Blue\One\a.mp3)");
    library.AddFile(R"(Red\One\a.mp3)");
    Exclude({"Red", " Blue"});
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Blue|One|1"));
}

TEST_F(TreeTest, SweepsTheRowsOfAnExcludedArtist) {
    library.AddFile(R"(Blue\One\a.mp3)");
    library.Reconcile();
    Exclude({"blue"});
    library.Reconcile();
    EXPECT_THAT(library.Albums(), IsEmpty());
    EXPECT_THAT(library.Tracks(), IsEmpty());
}

TEST_F(TreeTest, TakesAwkwardNamesAsTheyAre) {
    const std::vector<std::string> names{"O'Neil & Söhne", "100%",     "a_b", "[live]", "#1 hits",
                                         "Ünïcödé",        "дым",      "a;b", "a--b",   "(x)",
                                         "a{b}",           "!exclaim", "a=b", "a+b",    "~tilde"};
    for (const std::string& name : names)
        library.AddFile(name + "\\" + name + "\\01 - " + name + ".mp3");
    library.Reconcile();
    EXPECT_EQ(library.Albums().size(), names.size());
    const auto tracks = library.Rows("SELECT Title FROM Tracks");
    EXPECT_THAT(tracks, ::testing::UnorderedElementsAreArray(names));
    library.Reconcile();
    EXPECT_EQ(library.run.counts.tracksAdded, names.size());
    EXPECT_EQ(library.run.counts.tracksUnchanged, names.size());
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(TreeTest, TakesFoldersThatDifferInLetterCaseAloneForOneAlbum) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.Reconcile();
    library.RemoveFile(R"(Red\One\a.mp3)");
    library.AddFile(R"(RED2\One\a.mp3)");
    library.AddAlbumRow("252E671073EC0700", "red2", "ONE", 1);
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("red2|ONE|1"));
}

TEST_F(TreeTest, OfTwoIdenticalLibrariesTheSecondRunNumbersByAgeAndTheThirdChangesNothing) {
    support::RawTag tag;
    for (int album = 0; album < 4; ++album) {
        for (int track = 0; track < 5; ++track) {
            tag.track = static_cast<std::uint8_t>(track + 1);
            library.AddFile(
                "Artist\\Album " + std::to_string(album) + "\\" + std::to_string(track) + ".mp3",
                tag, 100 - 7 * track);
        }
    }
    constexpr const char* Everything = "SELECT * FROM Tracks ORDER BY ID";
    library.Reconcile();
    EXPECT_EQ(library.run.counts.tracksAdded, 20U);
    EXPECT_EQ(library.run.counts.albumsAdded, 4U);
    const auto first = library.Rows(Everything);

    library.run.counts = {};
    library.Reconcile();
    const auto second = library.Rows(Everything);
    EXPECT_NE(second, first);
    EXPECT_EQ(library.run.counts.tracksAdded, 0U);
    EXPECT_EQ(library.run.counts.tracksChanged, 16U);  // the middle file of five keeps its place
    EXPECT_EQ(library.run.counts.tracksUnchanged, 4U);
    EXPECT_EQ(library.run.counts.albumsUnchanged, 4U);

    const auto albums = library.Rows("SELECT * FROM Albums ORDER BY ID");
    library.run.counts = {};
    library.ReopenDatabase();
    library.Reconcile();
    EXPECT_EQ(library.Rows(Everything), second);
    EXPECT_EQ(library.Rows("SELECT * FROM Albums ORDER BY ID"), albums);
    EXPECT_EQ(library.run.counts.tracksUnchanged, 20U);
    EXPECT_EQ(library.run.counts.tracksChanged + library.run.counts.tracksRemoved, 0U);
    EXPECT_EQ(library.Faults(), "");
}

}  // namespace
}  // namespace quillon
