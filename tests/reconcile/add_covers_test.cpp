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

TEST_F(AddCoverTest, DoesNotKeepTheMusicOutWhereItCannotBeCopied) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album"));
    AddNew("2.mp3", TagOf("Two", "Artist", "Album"));
    AddNew("3.mp3", TagOf("Three", "Another", "Record"));
    AddImage("front.jpg");
    library.calls.Refuse(R"(CopyFile D:\New\front.jpg -> D:\Covers\Artist - Album.jpg)",
                         FailureNumber::PermissionDenied, R"(D:\New\front.jpg)");
    Add();
    // Once for the album.
    EXPECT_THAT(Log(), ElementsAre("Quillon: AddFile Line 5 Permission denied: "
                                   R"(D:\New\front.jpg (D:\New\1.mp3))"));
    EXPECT_THAT(Images(), ElementsAre("Null", R"(D:\Covers\Another - Record.jpg)"));
    EXPECT_THAT(library.Albums(), ElementsAre("Another|Record|1", "Artist|Album|2"));
    EXPECT_THAT(library.Tracks(), SizeIs(3));
    EXPECT_EQ(library.run.counts.filesCopied, 3U);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(AddCoverTest, IsTakenBackAloneWhenItsAlbumRefusesIt) {
    AddSong();
    AddImage("front.jpg");
    library.Database().RefuseValue("ImageFile", R"(D:\Covers\Artist - Album.jpg)");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: AddFile Line 5 refused (D:\New\x.mp3))"));
    EXPECT_THAT(Images(), ElementsAre("Null"));
    EXPECT_FALSE(library.files.FileExists(R"(D:\Covers\Artist - Album.jpg)"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Artist\Album\Song.mp3|Song|1)"));
    EXPECT_EQ(library.run.counts.filesCopied, 1U);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(AddCoverTest, GoesWithAFileThatIsTakenBack) {
    AddSong();
    AddImage("front.jpg");
    library.Database().RefuseValue("Song", "Song");
    Add();
    EXPECT_THAT(library.Rows("SELECT ID FROM Albums"), IsEmpty());
    EXPECT_FALSE(library.files.FileExists(R"(D:\Covers\Artist - Album.jpg)"));
    EXPECT_EQ(library.run.counts.filesCopied, 0U);
}

TEST_F(AddCoverTest, IsNoCompanionOfAnImage) {
    AddSong();
    AddImage("._front.jpg", "AppleDouble");
    AddImage("front.jpg", "image");
    Add();
    EXPECT_EQ(library.files.Content(R"(D:\Covers\Artist - Album.jpg)"), "image");
}

}  // namespace
}  // namespace quillon
