#include <gmock/gmock.h>

#include "tests/reconcile/adding_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AddCoverTest : public AddingTest {
  protected:
    void AddSong(const std::string& path = "x.mp3") {
        AddNew(path, TagOf("Song", "Artist", "Album"));
    }
    std::vector<std::string> Images() {
        return library.Rows("SELECT ImageFile FROM Albums ORDER BY ID");
    }
};

TEST_F(AddCoverTest, CopiesTheFirstImageBesideTheFile) {
    AddSong();
    AddImage("back.gif", "back");
    AddImage("front.jpg", "front");
    Add();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Artist - Album.gif)"));
    EXPECT_EQ(library.files.Content(R"(D:\Covers\Artist - Album.gif)"), "back");
    EXPECT_FALSE(library.files.FileExists(R"(D:\Covers\Artist - Album.jpg)"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(AddCoverTest, KnowsImagesByTheirEndingWhateverItsLetterCase) {
    AddSong();
    AddImage("a.png");
    AddImage("b.jpg.txt");
    AddImage("c.old.JPEG");
    Add();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Artist - Album.JPEG)"));
}

TEST_F(AddCoverTest, TakesNoImageOfAnotherFolder) {
    AddSong(R"(A\x.mp3)");
    AddImage("front.jpg");
    AddImage(R"(A\Scans\front.jpg)");
    Add();
    EXPECT_THAT(Images(), ElementsAre("Null"));
    EXPECT_THAT(library.calls.Of({"CopyFile"}), SizeIs(1));
}

TEST_F(AddCoverTest, GivesEachAlbumOfAFolderTheImage) {
    AddNew("1.mp3", TagOf("One", "Artist", "First"));
    AddNew("2.mp3", TagOf("Two", "Artist", "Second"));
    AddImage("front.jpg");
    Add();
    EXPECT_THAT(Images(),
                ElementsAre(R"(D:\Covers\Artist - First.jpg)", R"(D:\Covers\Artist - Second.jpg)"));
}

TEST_F(AddCoverTest, LeavesAnAlbumsOwnCover) {
    library.Execute(
        "INSERT INTO Albums (CDJID, Artist, Title, Tracks, ImageFile) VALUES "
        "('x', 'Artist', 'Album', 0, 'D:\\Covers\\mine.jpg')");
    AddSong();
    AddImage("front.jpg");
    Add();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\mine.jpg)"));
    EXPECT_FALSE(library.files.FileExists(R"(D:\Covers\Artist - Album.jpg)"));
}

/// What the verification of covers has emptied was tied to an image once; it ties it again.
TEST_F(AddCoverTest, LeavesAnEmptiedCover) {
    library.Execute(
        "INSERT INTO Albums (CDJID, Artist, Title, Tracks, ImageFile) VALUES "
        "('x', 'Artist', 'Album', 0, '')");
    AddSong();
    AddImage("front.jpg");
    Add();
    EXPECT_THAT(Images(), ElementsAre(""));
}

TEST_F(AddCoverTest, UsesAnImageThatIsThereAndLeavesItAsItIs) {
    library.files.AddFile(R"(D:\Covers\artist - album.jpg)", "mine");
    AddSong();
    AddImage("front.jpg", "theirs");
    Add();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Artist - Album.jpg)"));
    EXPECT_EQ(library.files.Content(R"(D:\Covers\Artist - Album.jpg)"), "mine");
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(AddCoverTest, ComesToAnAlbumWhoseFilesAreThereAlready) {
    AddSong();
    Add();
    EXPECT_THAT(Images(), ElementsAre("Null"));
    AddImage("front.jpg");
    Add();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Artist - Album.jpg)"));
    EXPECT_THAT(library.Tracks(), SizeIs(1));
}

TEST_F(AddCoverTest, IsNotWantedWithoutAFolderForIt) {
    library.run.settings.AlbumCoverFolder = "\\";
    AddSong();
    AddImage("front.jpg");
    Add();
    EXPECT_THAT(Images(), ElementsAre("Null"));
    EXPECT_THAT(library.Tracks(), SizeIs(1));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(AddCoverTest, IsLookedForOnceAFolder) {
    for (int i = 0; i < 5; ++i)
        AddNew(std::to_string(i) + ".mp3", TagOf(std::to_string(i), "Artist", "Album"));
    Add();
    EXPECT_THAT(library.calls.Of({"FilesIn"}), SizeIs(1));
}

}  // namespace
}  // namespace quillon
