#include "covers/folder_images.h"

#include <gmock/gmock.h>

#include "run/folder_images.h"
#include "tests/covers/covers_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FolderImages : public RefreshAlbumCoversTest {
  protected:
    FolderImages() { library.run.modern.takesFolderImages = true; }

    /// An album of one song in a folder of its own.
    void AddAlbumWithSong(const std::string& title) {
        library.AddAlbumRow("A-" + title, "Ann", title, 1);
        library.AddTrackRow("A-" + title, 1, FolderOfAlbum(title) + "One.mp3", "One");
        library.files.AddFile(FolderOfAlbum(title) + "One.mp3");
    }
    void AddFolderImage(const std::string& title, const std::string& name,
                        const std::string& content = "image") {
        library.files.AddFile(FolderOfAlbum(title) + name, content);
    }
    static std::string FolderOfAlbum(const std::string& title) {
        return R"(D:\Music\Ann\)" + title + '\\';
    }
};

TEST(IsFolderImage, KnowsTheNamesThatPeopleAndProgramsGiveThem) {
    for (const char* const name :
         {"cover.jpg", "Cover.JPEG", "folder.png", "Front.jpg", "AlbumArt.jpg"})
        EXPECT_TRUE(IsFolderImage(name)) << name;
    for (const char* const name : {"cover.gif", "cover", "cover2.jpg", "back.jpg", "xcover.jpg",
                                   "AlbumArtSmall.jpg", "cover.jpg.bak"})
        EXPECT_FALSE(IsFolderImage(name)) << name;
}

TEST_F(FolderImages, AreTakenByAlbumsWithoutACover) {
    AddAlbumWithSong("First");
    AddFolderImage("First", "Folder.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\Folder.jpg)"));
    EXPECT_THAT(Log(),
                ElementsAre("Quillon: Album Cover D:\\Music\\Ann\\First\\Folder.jpg added to "
                            "Albums database"));
    library.host.log.clear();
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\Folder.jpg)"));
    EXPECT_THAT(Log(), IsEmpty()) << "and the next run has nothing to do";
    EXPECT_EQ(library.run.counts.imagesAdded, 1U);
}

TEST_F(FolderImages, AnEmptyOneHidesNoOther) {
    AddAlbumWithSong("First");
    AddFolderImage("First", "cover.jpg", "");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("Null"));
    AddFolderImage("First", "front.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\front.jpg)"));
}

TEST_F(FolderImages, TheBestNameCountsAndThenTheExtension) {
    AddAlbumWithSong("First");
    for (const char* const name :
         {"AlbumArt.jpg", "front.jpg", "folder.jpg", "cover.png", "cover.jpeg"})
        AddFolderImage("First", name);
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\cover.jpeg)"));
}

TEST_F(FolderImages, ACoverByNameComesFirst) {
    AddAlbumWithSong("First");
    AddFolderImage("First", "cover.jpg");
    AddImage("Ann - First.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First.jpg)"));
}

TEST_F(FolderImages, GoWithImagesOfEveryKindThatAreNamedAsAlbums) {
    for (const char* const title : {"First", "Second", "Third"})
        AddAlbumWithSong(title);
    for (const char* const name : {"Ann - First.JPEG", "Ann - First.png", "Ann - Second.jpeg",
                                   "Ann - Second.gif", "Ann - Third.jpeg", "cover.jpeg"})
        AddImage(name);
    for (int round = 0; round < 2; ++round) {
        Refresh();
        EXPECT_THAT(Images(),
                    ElementsAre(R"(D:\Covers\Ann - First.JPEG)", R"(D:\Covers\Ann - Second.gif)",
                                R"(D:\Covers\Ann - Third.jpeg)"));
    }
    library.run.modern.takesFolderImages = false;
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("", R"(D:\Covers\Ann - Second.gif)", ""));
}

TEST_F(FolderImages, ThatAreGoneGiveWayToOthersOrToNone) {
    AddAlbumWithSong("First");
    AddAlbumWithSong("Second");
    AddFolderImage("First", "cover.jpg");
    AddFolderImage("First", "front.jpg");
    AddFolderImage("Second", "cover.jpg");
    Refresh();
    library.files.DeleteFile(FolderOfAlbum("First") + "cover.jpg");
    library.files.DeleteFile(FolderOfAlbum("Second") + "cover.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\front.jpg)", ""));
}

TEST_F(FolderImages, StayWhereTheFolderIsAway) {
    AddAlbumWithSong("First");
    AddFolderImage("First", "cover.jpg");
    Refresh();
    library.files.DeleteFolder(R"(D:\Music\Ann\First)");
    for (const bool isFlat : {false, true}) {
        library.run.settings.FlatStructure = isFlat;
        Refresh();
        EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\cover.jpg)")) << isFlat;
    }
}

TEST_F(FolderImages, StayWhereNobodyCanTell) {
    AddAlbumWithSong("First");
    AddFolderImage("First", "cover.jpg");
    Refresh();
    library.files.HideFromView(FolderOfAlbum("First") + "cover.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\cover.jpg)"));
}

TEST_F(FolderImages, AreNoCoversWithAWrongNameInTheLibrarysTree) {
    ScanLibraryTree();
    library.run.settings.LibraryRoot = R"(D:\Music)";
    AddAlbumWithSong("First");
    AddAlbumWithSong("Second");
    AddFolderImage("First", "cover.jpg");
    AddFolderImage("Second", "cover.jpg");
    Refresh();
    library.host.log.clear();
    Refresh();
    EXPECT_THAT(Images(),
                ElementsAre(R"(D:\Music\Ann\First\cover.jpg)", R"(D:\Music\Ann\Second\cover.jpg)"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(FolderImages, AreTakenWithoutACoverFolder) {
    library.run.settings.AlbumCoverFolder = "";
    AddAlbumWithSong("First");
    AddFolderImage("First", "cover.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\cover.jpg)"));
}

TEST_F(FolderImages, ThatTheWalkHasSeenAreNotLookedForAgain) {
    AddAlbumWithSong("First");
    AddAlbumWithSong("Second");
    AddFolderImage("First", "cover.jpg");
    library.Reconcile();
    library.files.unlistable = {R"(D:\Music\Ann\First)", R"(D:\Music\Ann\Second)"};
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\cover.jpg)", "Null"));
    EXPECT_EQ(library.run.counts.errors, 0U);
}

TEST_F(FolderImages, OfADiscComeBehindThoseOfTheAlbum) {
    library.run.modern.joinsDiscs = true;
    library.AddAlbumRow("A-1", "Ann", "First", 1);
    library.AddTrackRow("A-1", 1, FolderOfAlbum("First") + R"(CD1\One.mp3)", "One");
    library.files.AddFile(FolderOfAlbum("First") + R"(CD1\One.mp3)");
    AddFolderImage("First", R"(CD1\cover.jpg)");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\CD1\cover.jpg)"));
    library.files.DeleteFile(FolderOfAlbum("First") + R"(CD1\cover.jpg)");
    AddFolderImage("First", "front.png");
    AddFolderImage("First", R"(CD1\cover.png)");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\front.png)"));
}

// One that lies beside all songs would be the cover of every album; and the folder, with all songs
// in it, would be listed for each album.
TEST_F(FolderImages, OfTheFlatLayoutBelongToNoAlbum) {
    library.run.settings.FlatStructure = true;
    library.files.AddFile(R"(D:\Music\cover.jpg)", "image");
    for (const std::string title : {"First", "Second"}) {
        library.AddAlbumRow("A-" + title, "Ann", title, 1);
        library.AddTrackRow("A-" + title, 1, R"(D:\Music\Ann_)" + title + ".mp3", title);
        library.files.AddFile(R"(D:\Music\Ann_)" + title + ".mp3");
    }
    library.files.unlistable = {R"(D:\Music)"};
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("Null", "Null"));
    EXPECT_EQ(library.run.counts.errors, 0U);
}

TEST_F(FolderImages, AreLeftAloneUnlessTheyAreAskedFor) {
    library.run.modern.takesFolderImages = false;
    AddAlbumWithSong("First");
    AddFolderImage("First", "cover.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("Null"));
}

}  // namespace
}  // namespace quillon
