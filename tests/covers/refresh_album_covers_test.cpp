#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/covers/covers_fixture.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

TEST_F(RefreshAlbumCoversTest, TiesANewCoverToItsAlbum) {
    AddAlbum("Ann", "First");
    AddAlbum("Bob", "Second", "");
    AddImage("Ann - First.jpg");
    AddImage("bob - SECOND.GIF");
    Refresh();
    EXPECT_THAT(Images(),
                ElementsAre(R"(D:\Covers\Ann - First.jpg)", R"(D:\Covers\bob - SECOND.GIF)"));
    EXPECT_THAT(Log(),
                ElementsAre("Quillon: Album Cover Ann - First.jpg added to Albums database",
                            "Quillon: Album Cover bob - SECOND.GIF added to Albums database"));
    EXPECT_EQ(library.run.counts.errors, 0U);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(RefreshAlbumCoversTest, CountsTheAlbumsWhoseImageIsAnother) {
    AddAlbum("Ann", "First");
    AddAlbum("Bob", "Second", R"(D:\Old\Bob - Second.jpg)");
    AddAlbum("Cid", "Third", R"(D:\Covers\Cid - Third.jpg)");
    AddAlbum("Dora", "Fourth", R"(D:\Covers\Dora - Fourth.jpg)");
    AddImage("Ann - First.jpg");
    AddImage("Bob - Second.jpg");
    AddImage("Dora - Fourth.jpg");
    for (int run = 0; run < 2; ++run) {
        Refresh();
        EXPECT_EQ(library.run.counts.imagesAdded, 1U);
        EXPECT_EQ(library.run.counts.imagesChanged, 1U);
        EXPECT_EQ(library.run.counts.imagesRemoved, 1U);
    }
}

TEST_F(RefreshAlbumCoversTest, ShowsItsThreePhases) {
    AddAlbum("Ann", "First");
    Refresh();
    EXPECT_THAT(library.calls.Of({"Item"}), ElementsAre("Item 1. Scan Albums from Folder",
                                                        "Item 2. Compare Albums with Database",
                                                        "Item 3. Add New Covers to Database"));
}

TEST_F(RefreshAlbumCoversTest, LooksAtNoFolderWhenThereAreNoAlbums) {
    AddImage("Ann - First.jpg");
    Refresh();
    EXPECT_THAT(library.calls.Of({"FilesIn"}), IsEmpty());
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(RefreshAlbumCoversTest, PrefersAJpegToAGifOfTheSameName) {
    AddAlbum("Ann", "First");
    AddImage("Ann - First.gif");
    AddImage("ann - first.JPG");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\ann - first.JPG)"));
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(RefreshAlbumCoversTest, PrefersAJpegWhoseNameDiffersInApostrophesAlone) {
    AddAlbum("Ann", "Don't");
    AddAlbum("Ann", "Dont");
    AddImage("Ann - Dont.gif");
    AddImage("Ann - Don't.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - Don't.jpg)", "Null"));
}

TEST_F(RefreshAlbumCoversTest, LooksAtTheLastFourCharactersOfANameAlone) {
    AddAlbum("Ann", "First");
    for (const char* name :
         {"Ann - First.jpeg", "Ann - First.png", "Ann - First.jpg.txt", "jpg", "Ann - First_jpg"})
        AddImage(name);
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("Null"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(RefreshAlbumCoversTest, EmptiesTheImageFileOfADeletedImageWithoutAMessage) {
    AddAlbum("Ann", "First", R"(D:\Covers\Ann - First.jpg)");
    AddAlbum("Bob", "Second", R"(D:\Covers\)");
    AddAlbum("Cay", "Third", "D:/Covers/Cay - Third.jpg");
    AddImage("notfnd.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("", "", ""));
    EXPECT_THAT(library.Rows("SELECT Count(*) FROM Albums WHERE ImageFile=''"), ElementsAre("3"));
    EXPECT_THAT(Log(), IsEmpty());
}

/// The mount point of a drive that is away.
TEST_F(RefreshAlbumCoversTest, KeepsImagesWhenTheCoverFolderHoldsNoneAtAll) {
    AddAlbum("Ann", "First", R"(D:\Covers\Ann - First.jpg)");
    AddAlbum("Bob", "Second", R"(E:\Elsewhere\Bob - Second.jpg)");
    library.files.AddFolder(R"(D:\Covers\lost+found)");
    Refresh();
    EXPECT_THAT(Images(),
                ElementsAre(R"(D:\Covers\Ann - First.jpg)", R"(E:\Elsewhere\Bob - Second.jpg)"));
    EXPECT_THAT(Log(), ElementsAre("Quillon: Album Covers: 2 albums keep their images, which were "
                                   "not found, because there is no image at all in D:\\Covers\\. "
                                   "See to the drives and folders and run again"));
    EXPECT_EQ(library.run.counts.errors, 1U);
}

TEST_F(RefreshAlbumCoversTest, EmptiesThemAllWithoutTheBrakeOrWithLeave) {
    AddAlbum("Ann", "First", R"(D:\Covers\Ann - First.jpg)");
    library.run.removals.limits.Brake = false;
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(""));

    library.Execute(R"(UPDATE Albums SET ImageFile='D:\Covers\Ann - First.jpg')");
    library.run.removals.limits.Brake = true;
    library.run.removals.allAllowed = true;
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(""));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(RefreshAlbumCoversTest, KeepsImagesOfAnEmptyCoverFolderThoughTheLibraryHasSome) {
    ScanLibraryTree();
    library.AddFile(R"(Bob\Second\song.mp3)");
    library.files.AddFile(R"(D:\Music\Bob\Second\Bob - Second.jpg)");
    AddAlbum("Ann", "First", R"(D:\Covers\Ann - First.jpg)");
    AddAlbum("Bob", "Second", R"(D:\Music\Bob\Second\gone.jpg)");
    Refresh();
    // What lay in the library is known to be gone.
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First.jpg)",
                                      R"(D:\Music\Bob\Second\Bob - Second.jpg)"));
    EXPECT_THAT(Log(), Contains(StartsWith("Quillon: Album Covers: 1 album keeps its image, which "
                                           "was not found, because there is no image at all in "
                                           "D:\\Covers\\")));
}

TEST_F(RefreshAlbumCoversTest, KeepsAllImagesWhenOneCannotBeLookedAt) {
    AddAlbum("Ann", "First", R"(D:\Covers\Ann - First.jpg)");
    AddAlbum("Bob", "Second", R"(D:\Covers\Bob - Second.jpg)");
    AddImage("Ann - First.jpg");
    AddImage("other.jpg");
    library.files.HideFromView(R"(D:\Covers\Ann - First.jpg)");
    Refresh();
    EXPECT_THAT(Images(),
                ElementsAre(R"(D:\Covers\Ann - First.jpg)", R"(D:\Covers\Bob - Second.jpg)"));
    EXPECT_THAT(Log(), Contains("Quillon: Album Covers: 2 albums keep their images, which were not "
                                "found, because not all could be looked at. See to the drives and "
                                "folders and run again"));
}

TEST_F(RefreshAlbumCoversTest, KeepsAllImagesWhenAFolderOfTheLibraryCannotBeLookedAt) {
    ScanLibraryTree();
    for (const char* const hidden : {R"(D:\Music\Ann)", R"(D:\Music\Ann\First)"}) {
        SCOPED_TRACE(hidden);
        support::TestLibrary other;
        other.run.settings.AlbumCoverFolder = Folder;
        other.host.Set("ScanLibrary", "1");
        other.files.AddFile(R"(D:\Covers\other.jpg)");
        other.files.AddFile(R"(D:\Music\Ann\First\front.jpg)");
        other.Execute(R"(INSERT INTO Albums (Artist, Title, ImageFile) VALUES )"
                      R"(('Ann', 'First', 'D:\Music\Ann\First\front.jpg'))");
        other.files.HideFromView(hidden);
        RefreshAlbumCovers(other.run);
        EXPECT_THAT(other.Rows("SELECT ImageFile FROM Albums"),
                    ElementsAre(R"(D:\Music\Ann\First\front.jpg)"));
        EXPECT_EQ(other.run.counts.errors, 1U);
    }
}

TEST_F(RefreshAlbumCoversTest, PassesOverWhatAMacintoshPutsBesideAnImage) {
    AddAlbum("Ann", "First");
    AddImage("._Ann - First.jpg");
    AddImage("Ann - First.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First.jpg)"));
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(RefreshAlbumCoversTest, GivesAnAlbumWhoseImageIsGoneTheOneOfItsName) {
    AddAlbum("Ann", "First", R"(D:\Covers\old name.jpg)");
    AddImage("Ann - First.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First.jpg)"));
    EXPECT_THAT(Log(),
                ElementsAre("Quillon: Album Cover Ann - First.jpg added to Albums database"));
}

TEST_F(RefreshAlbumCoversTest, FollowsAnImageThatHasMoved) {
    AddAlbum("Ann", "First", R"(E:\Old\whatever.JPG)");
    AddAlbum("Bob", "Second", "whatever.jpg");
    AddImage("Whatever.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Whatever.jpg)", R"(D:\Covers\Whatever.jpg)"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(RefreshAlbumCoversTest, FindsAnImageWhoseNameDiffersInApostrophesAlone) {
    AddAlbum("Ann", "Don't", R"(D:\Covers\Ann - Don't.jpg)");
    AddImage("Ann - Dont.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - Dont.jpg)"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(RefreshAlbumCoversTest, TakesQuotesInAStoredPathAsTheyAre) {
    AddAlbum("Ann", "First", R"(D:\Covers\12" 'mix'.jpg)");
    AddImage("notfnd.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(""));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(RefreshAlbumCoversTest, TiesCoversWithAwkwardNames) {
    const std::vector<std::string> names{"Rock 'n' Roll", "100%", "a_b",
                                         "[live]",        "#1",   "Ångström"};
    for (const std::string& name : names) {
        AddAlbum(name, "Don't " + name);
        AddImage(name + " - Don't " + name + ".jpg");
    }
    Refresh();
    EXPECT_THAT(Images(), Not(Contains("Null")));
    EXPECT_EQ(Log().size(), names.size());
    const std::vector<std::string> images = Images();
    Refresh();
    EXPECT_EQ(Images(), images);
    EXPECT_EQ(Log().size(), names.size());
}

TEST_F(RefreshAlbumCoversTest, ReportsANameWithoutBlanksAroundItsHyphen) {
    AddAlbum("Ann", "First");
    AddImage("Ann-First.jpg");
    AddImage("Ann -First.jpg");
    AddImage("Ann.jpg");
    Refresh();
    EXPECT_THAT(
        Log(),
        ElementsAre(
            "Quillon: Album Cover Ann -First.jpg filename is not of correct Artist - Album format",
            "Quillon: Album Cover Ann-First.jpg filename is not of correct Artist - Album format",
            "Quillon: Album Cover Ann.jpg filename is not of correct Artist - Album format"));
}

TEST_F(RefreshAlbumCoversTest, NeverReportsThePlaceholder) {
    AddAlbum("Ann", "First");
    for (const char* name : {"notfnd.jpg", "NotFnd.JPG"}) {
        AddImage(name);
        Refresh();
        EXPECT_THAT(Log(), IsEmpty()) << name;
        library.files.DeleteFile(Folder + std::string(name));
    }
    AddImage("notfnd.gif");
    Refresh();
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(RefreshAlbumCoversTest, SplitsANameAtItsFirstSeparatorAndTrimsBothParts) {
    AddAlbum("Ann", "First - Live - 2");
    AddAlbum("Bob", "Second");
    AddImage("Ann - First - Live - 2.jpg");
    AddImage(" Bob  -   Second .jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First - Live - 2.jpg)",
                                      R"(D:\Covers\ Bob  -   Second .jpg)"));
}

TEST_F(RefreshAlbumCoversTest, ReadsANameThatNamesNoAlbum) {
    AddAlbum("Ann", "");
    AddImage("Ann - .jpg");
    AddImage("Bob - .jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - .jpg)"));
    EXPECT_THAT(Log(), Contains("Quillon: Album Cover Bob - .jpg is in directory but does not have "
                                "this artist/album in Albums database"));
}

TEST_F(RefreshAlbumCoversTest, ReportsACoverWithoutAnAlbum) {
    AddAlbum("Ann", "First");
    AddImage("Ann - Second.jpg");
    Refresh();
    EXPECT_THAT(Log(), ElementsAre("Quillon: Album Cover Ann - Second.jpg is in directory but does "
                                   "not have this artist/album in Albums database"));
    EXPECT_THAT(Images(), ElementsAre("Null"));
}

TEST_F(RefreshAlbumCoversTest, ReportsACoverWhoseAlbumHasAnother) {
    AddAlbum("Ann", "First", R"(D:\Covers\own.jpg)");
    AddImage("own.jpg");
    AddImage("Ann - First.gif");
    Refresh();
    EXPECT_THAT(Log(),
                ElementsAre(R"(Quillon: Album Cover Ann - First.gif is in directory but does )"
                            R"(not match D:\Covers\own.jpg in Albums database)"));
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\own.jpg)"));
}

TEST_F(RefreshAlbumCoversTest, GivesACoverToTheFirstOfSeveralAlbumsOfOneName) {
    AddAlbum("Ann", "First");
    AddAlbum("Ann", "First");
    AddImage("Ann - First.jpg");
    Refresh();
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First.jpg)", "Null"));
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(RefreshAlbumCoversTest, ReportsAnAlbumThatVanishesBetweenTwoReadings) {
    AddAlbum("Ann", "First");
    AddAlbum("Bob", "Second");
    AddImage("Ann - First.jpg");
    AddImage("Bob - Second.jpg");
    library.Database().BeforeStatement(
        "Has Albums", [this] { library.Database().Execute("DELETE * FROM Albums WHERE ID=1"); });
    Refresh();
    EXPECT_THAT(Log(),
                ElementsAre("Quillon: Album cover record ID 1 could not be found on second read",
                            "Quillon: Album Cover Bob - Second.jpg added to Albums database"));
}

TEST_F(RefreshAlbumCoversTest, ChangesNothingTheSecondTimeAndLeavesTheFileAsItIs) {
    for (int i = 0; i < 100; ++i) {
        const std::string title = "No. " + std::to_string(i);
        AddAlbum("Ann", title);
        AddImage("Ann - " + title + ".jpg");
    }
    Refresh();
    EXPECT_EQ(Log().size(), 100U);
    const std::string before = library.DatabaseBytes();
    Refresh();
    EXPECT_TRUE(library.DatabaseBytes() == before);
    EXPECT_EQ(Log().size(), 100U);
}

}  // namespace
}  // namespace quillon
