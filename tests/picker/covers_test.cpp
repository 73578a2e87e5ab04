#include "picker/covers.h"

#include <gmock/gmock.h>

#include "picker/cover_names.h"
#include "picker/placeholder.h"
#include "platform/ansi.h"
#include "tests/picker/fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class PickerCoversTest : public PickerFixture {
  protected:
    /// Adds an album with a cover image that exists.
    void AddWithCover(const std::string& cdjid, const std::string& image,
                      const std::string& content) {
        AddAlbum({cdjid, "Artist " + cdjid, "Album " + cdjid, 8, image});
        files.AddFile(image, content, OldTime);
    }

    std::string Cover(const std::string& name) const { return files.Content(Covers + name); }

    void ExpectCoverOnBothPages(const std::string& url) {
        const std::string source = "<img src=/Quillon/albumcovers/" + url + " alt=";
        EXPECT_THAT(Page(0), HasSubstr(source));
        EXPECT_THAT(Page(1), HasSubstr(source));
    }

    std::vector<std::string> Copies() {
        std::vector<std::string> copies = world.calls.Of({"CopyFile"});
        world.calls.Forget();
        return copies;
    }

    static inline const DateTime OldTime = MakeDateTime(2020, 1, 1);
};

TEST_F(PickerCoversTest, AreCopiedUnderWebSafeNames) {
    AddWithCover("1", R"(D:\Covers\Café - L'Été & so.jpg)", "image");
    Build();
    EXPECT_THAT(log, IsEmpty());
    EXPECT_EQ(Cover("Cafe-L'Ete&so.jpg"), "image");
    ExpectCoverOnBothPages("Cafe-L%27Ete%26so.jpg");
}

TEST_F(PickerCoversTest, WithOtherLettersHaveEncodedAddresses) {
    AddWithCover("1", R"(D:\Covers\Žofie ñ.png)", "image");
    Build();
    EXPECT_EQ(Cover("Žofieñ.png"), "image");
    ExpectCoverOnBothPages("%C5%BDofie%C3%B1.png");
}

TEST_F(PickerCoversTest, ThatAreMissingShowThePlaceholder) {
    files.AddFolder(R"(D:\Covers)");
    AddAlbum({"1", "Alder", "One", 8, R"(D:\Covers\gone.jpg)"});
    AddAlbum({"2", "Alder", "Two", 8, ""});
    Build();
    EXPECT_THAT(log, IsEmpty());
    EXPECT_EQ(Count(Page(1), "<img src=/Quillon/albumcovers/notfnd.jpg "), 2U);
    const std::vector<std::uint8_t> drawn = PlaceholderImage();
    EXPECT_EQ(Utf8ToAnsi(Cover("notfnd.jpg")), std::string(drawn.begin(), drawn.end()));
}

TEST_F(PickerCoversTest, WhoseFolderIsMissingAreTold) {
    AddAlbum({"1", "Alder", "One", 8, R"(D:\Covers\gone.jpg)"});
    Build();
    EXPECT_THAT(log, ElementsAre(R"(Quillon: BuildcdjPages  Line 3 Path not found: D:\Covers\)"));
    EXPECT_EQ(Count(Page(1), "<img src=/Quillon/albumcovers/notfnd.jpg "), 1U);
}

TEST_F(PickerCoversTest, UseTheHouseholdsOwnPlaceholder) {
    files.AddFile(R"(D:\Covers\notfnd.jpg)", "own", OldTime);
    AddAlbum({"1", "Alder", "One", 8, R"(D:\Covers\notfnd.jpg)"});
    Build();
    EXPECT_EQ(Cover("notfnd.jpg"), "own");
    ExpectCoverOnBothPages("notfnd.jpg");
}

TEST_F(PickerCoversTest, LeaveThePlaceholderThatIsThere) {
    files.AddFile(Covers + std::string(PlaceholderName), "there");
    AddAlbum({"1", "Alder", "One"});
    Build();
    EXPECT_EQ(Cover("notfnd.jpg"), "there");
}

TEST_F(PickerCoversTest, OfAnotherMachineAreFoundInTheCoverFolder) {
    AddAlbum({"1", "Alder", "One", 8, R"(X:\pictures\one.jpg)"});
    AddAlbum({"2", "Alder", "Two", 8, "two.gif"});
    files.AddFile(R"(D:\Covers\one.jpg)", "1");
    files.AddFile(R"(D:\Covers\two.gif)", "2");
    Build();
    EXPECT_EQ(Cover("one.jpg"), "1");
    EXPECT_EQ(Cover("two.gif"), "2");
}

TEST_F(PickerCoversTest, ThatAreNoImagesAreNotServed) {
    AddWithCover("1", R"(D:\Covers\evil.asp)", "<%Response.End%>");
    AddWithCover("2", R"(D:\Covers\evil.jpg.html)", "<script>");
    AddWithCover("3", R"(D:\Covers\.jpg)", "nameless");
    Build();
    EXPECT_THAT(Names(Covers), ElementsAre("notfnd.jpg"));
    EXPECT_EQ(Count(Page(1), "<img src=/Quillon/albumcovers/notfnd.jpg "), 3U);
}

TEST_F(PickerCoversTest, OfTheSameNameAreKeptApart) {
    AddWithCover("1", R"(D:\Covers\A B.jpg)", "first");
    AddWithCover("2", R"(D:\Music\x\AB.jpg)", "second");
    Build();
    EXPECT_EQ(Cover("AB.jpg"), "first");
    EXPECT_EQ(Cover("AB-2.jpg"), "second");
    ExpectCoverOnBothPages("AB.jpg");
    ExpectCoverOnBothPages("AB-2.jpg");
}

TEST_F(PickerCoversTest, OfTheSameNameSizeAndTimeAreKeptApartWhateverWasThere) {
    AddWithCover("2", R"(D:\Music\x\AB.jpg)", "twin b");
    Build();
    AddWithCover("1", R"(D:\Covers\A B.jpg)", "twin a");
    Build();
    EXPECT_EQ(Cover("AB.jpg"), "twin a");
    EXPECT_EQ(Cover("AB-2.jpg"), "twin b");
}

TEST_F(PickerCoversTest, InAlbumFoldersAreNamedAfterTheirAlbumsWhereSuchAreCovers) {
    AddWithCover("1", R"(D:\Music\x\cover.jpg)", "first");
    AddWithCover("2", R"(D:\Music\y\cover.jpg)", "second");
    Build();
    EXPECT_THAT(Names(Covers), ElementsAre("cover-2.jpg", "cover.jpg", "notfnd.jpg"));
    world.run.modern.takesFolderImages = true;
    AddWithCover("3", R"(D:\Music\z\Own.jpg)", "third");
    Build();
    EXPECT_EQ(Cover("Artist1-Album1.jpg"), "first");
    EXPECT_EQ(Cover("Artist2-Album2.jpg"), "second");
    EXPECT_EQ(Cover("Own.jpg"), "third");
    ExpectCoverOnBothPages("Artist1-Album1.jpg");
}

TEST_F(PickerCoversTest, InAlbumFoldersKeepTheirNamesWhereAlbumsHaveNoneForAFile) {
    world.run.modern.takesFolderImages = true;
    AddAlbum({"1", std::string(200, 'a'), std::string(100, 'b'), 8, R"(D:\Music\x\front.png)"});
    files.AddFile(R"(D:\Music\x\front.png)", "first", OldTime);
    Build();
    EXPECT_EQ(Cover("front.png"), "first");
}

TEST_F(PickerCoversTest, SharedByAlbumsAreCopiedOnce) {
    AddWithCover("1", R"(D:\Covers\box.jpg)", "box");
    AddWithCover("2", R"(d:\covers\BOX.jpg)", "box");
    Build();
    EXPECT_THAT(Copies(), ElementsAre(R"(CopyFile D:\Covers\box.jpg -> )" +
                                      (Covers + std::string("box.jpg"))));
    EXPECT_EQ(Count(Page(1), "/Quillon/albumcovers/box.jpg "), 2U);
}

TEST_F(PickerCoversTest, AreCopiedAgainOnlyWhenTheyHaveChanged) {
    AddWithCover("1", R"(D:\Covers\a.jpg)", "one");
    Build();
    EXPECT_EQ(Copies().size(), 1U);
    Build();
    EXPECT_THAT(Copies(), IsEmpty());
    files.AddFile(R"(D:\Covers\a.jpg)", "two", MakeDateTime(2021, 1, 1));
    Build();
    EXPECT_EQ(Copies().size(), 1U);
    files.AddFile(R"(D:\Covers\a.jpg)", "three", MakeDateTime(2021, 1, 1));
    Build();
    EXPECT_EQ(Cover("a.jpg"), "three");
}

TEST_F(PickerCoversTest, ThatCannotBeCopiedAreLoggedAndShowThePlaceholder) {
    AddWithCover("1", R"(D:\Covers\locked.jpg)", "1");
    AddWithCover("2", R"(D:\Covers\open.jpg)", "2");
    world.calls.Refuse(
        R"(CopyFile D:\Covers\locked.jpg -> )" + (Covers + std::string("locked.jpg")),
        FailureNumber::PermissionDenied, R"(D:\Covers\locked.jpg)");
    Build();
    EXPECT_THAT(log, ElementsAre("Quillon: BuildcdjPages  Line 3 Permission denied: "
                                 R"(D:\Covers\locked.jpg)"));
    ExpectCoverOnBothPages("notfnd.jpg");
    ExpectCoverOnBothPages("open.jpg");
}

TEST_F(PickerCoversTest, AreNotCopiedOntoThemselves) {
    run.settings.AlbumCoverFolder = Covers;
    AddWithCover("1", Covers + std::string("a.jpg"), "a");
    AddWithCover("2", Covers + std::string("b c.jpg"), "spaced");
    AddWithCover("3", Covers + std::string("bc.jpg"), "dense");
    Build();
    EXPECT_THAT(log, IsEmpty());
    EXPECT_EQ(Cover("bc.jpg"), "dense");
    EXPECT_EQ(Cover("bc-2.jpg"), "spaced");
    ExpectCoverOnBothPages("a.jpg");
}

TEST_F(PickerCoversTest, StopBetweenTwoAfterAnAbort) {
    AddWithCover("1", R"(D:\Covers\a.jpg)", "a");
    AddWithCover("2", R"(D:\Covers\b.jpg)", "b");
    world.window.PressAbortWhen(
        [this](const FormState&) { return files.FileExists(Covers + std::string("a.jpg")); });
    Build();
    EXPECT_FALSE(files.FileExists(Covers + std::string("b.jpg")));
    EXPECT_FALSE(HasPage(0));
}

}  // namespace
}  // namespace quillon
