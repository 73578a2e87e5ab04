#include "picker/modern/thumbnails.h"

#include <gmock/gmock.h>

#include "tests/picker/modern/fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

class ThumbnailsTest : public ModernFixture {
  protected:
    std::string ContentOf(const std::string& name) {
        return files.Content(std::string(ThumbnailFolder) + '\\' + name);
    }
};

TEST_F(ThumbnailsTest, AreMadeOnceForEachCoverWhoeverHasIt) {
    AddAlbumWithCover("1", "a.jpg", "first");
    AddAlbumWithCover("2", "a.jpg", "first");
    AddAlbumWithCover("3", "b.jpg", "second");
    Build();
    EXPECT_THAT(log, IsEmpty());
    EXPECT_THAT(thumbnails.made, UnorderedElementsAre("first", "second"));
    std::vector<std::string> contents;
    for (const std::string& name : ThumbnailNames())
        contents.push_back(ContentOf(name));
    EXPECT_THAT(contents, UnorderedElementsAre("small first", "small second"));
}

TEST_F(ThumbnailsTest, AreMadeAnewWhenTheCoverHasChangedAndTheOldOnesGo) {
    AddAlbumWithCover("1", "a.jpg", "first");
    Build();
    const std::string before = ThumbnailNames().at(0);
    files.AddFile(R"(D:\Covers\a.jpg)", "other", MakeDateTime(2021, 1, 1));
    Build();
    ASSERT_THAT(ThumbnailNames(), SizeIs(1));
    EXPECT_NE(ThumbnailNames().at(0), before);
    EXPECT_EQ(ContentOf(ThumbnailNames().at(0)), "small other");
    EXPECT_THAT(Page(0), HasSubstr(ThumbnailNames().at(0)));
}

TEST_F(ThumbnailsTest, StayUntilPagesThatDoNotNeedThemAreInTheirPlace) {
    AddAlbumWithCover("1", "a.jpg", "first");
    Build();
    const std::vector<std::string> before = ThumbnailNames();
    Execute("UPDATE Albums SET ImageFile=Null");
    world.calls.Refuse("MoveFolder " + std::string(Folder) + ".new -> " + Folder,
                       FailureNumber::PermissionDenied, Folder);
    Build();
    EXPECT_EQ(ThumbnailNames(), before);
    world.calls.Allow("MoveFolder " + std::string(Folder) + ".new -> " + Folder);
    Build();
    EXPECT_THAT(ThumbnailNames(), IsEmpty());
}

TEST_F(ThumbnailsTest, OfOthersStay) {
    files.AddFile(std::string(ThumbnailFolder) + R"(\mine.jpg)");
    files.AddFile(std::string(ThumbnailFolder) + R"(\0123456789abcdef.png)");
    files.AddFile(std::string(ThumbnailFolder) + R"(\0123456789abcdef.jpg)");
    Build();
    EXPECT_THAT(ThumbnailNames(), ElementsAre("0123456789abcdef.png", "mine.jpg"));
}

TEST_F(ThumbnailsTest, OfImagesThatCannotBeReadAreMissedOnceAndThenNoMore) {
    AddAlbumWithCover("1", "a.jpg", "bad picture");
    AddAlbumWithCover("2", "b.jpg", "picture");
    Build();
    EXPECT_THAT(log,
                ElementsAre("Quillon: Album Cover a.jpg is not an image; initials stand for it"));
    EXPECT_EQ(run.counts.errors, 0U);
    EXPECT_EQ(Count(Page(0), "<img "), 1U);
    log.clear();
    EXPECT_THAT(ChangesOfAnotherBuild(), IsEmpty());
    EXPECT_THAT(log, IsEmpty());
    EXPECT_THAT(thumbnails.made, SizeIs(2));
}

TEST_F(ThumbnailsTest, AreNotTriedWithFilesTooLargeForACover) {
    AddAlbumWithCover("1", "a.jpg", std::string((std::size_t{32} << 20U) + 1, 'x'));
    Build();
    EXPECT_THAT(log,
                ElementsAre("Quillon: Album Cover a.jpg is too large a file for a cover; initials "
                            "stand for it"));
    EXPECT_THAT(thumbnails.made, IsEmpty());
}

TEST_F(ThumbnailsTest, OfACoverThatCannotBeReadAreTriedAgain) {
    AddAlbumWithCover("1", "a.jpg", "picture");
    world.calls.Refuse("OpenBinary " + std::string(Covers) + "a.jpg",
                       FailureNumber::PermissionDenied, "a.jpg");
    Build();
    EXPECT_THAT(log, ElementsAre("Quillon: BuildcdjPages  Line 3 Permission denied: a.jpg"));
    EXPECT_THAT(ThumbnailNames(), IsEmpty());
    EXPECT_THAT(Page(0), Not(HasSubstr("<img")));
    world.calls.Allow("OpenBinary " + std::string(Covers) + "a.jpg");
    Build();
    EXPECT_THAT(ThumbnailNames(), SizeIs(1));
    EXPECT_THAT(Page(0), HasSubstr("<img"));
}

TEST_F(ThumbnailsTest, ThatCannotBeWrittenKeepTheOldPages) {
    files.AddFile(PagePath(0), "an old page");
    world.calls.Refuse("CreateFolder " + std::string(ThumbnailFolder),
                       FailureNumber::PermissionDenied, "thumbnails");
    Build();
    EXPECT_THAT(log, ElementsAre("Quillon: BuildcdjPages  Line 3 Permission denied: thumbnails"));
    EXPECT_EQ(Page(0), "an old page");
}

TEST_F(ThumbnailsTest, AreMissedInOneLineWhereTheyCannotBeMadeAtAll) {
    AddAlbumWithCover("1", "a.jpg", "first");
    Build();
    AddAlbumWithCover("2", "b.jpg", "second");
    AddAlbumWithCover("3", "c.jpg", "third");
    thumbnails.isMissing = true;
    Build();
    EXPECT_THAT(log, ElementsAre("Quillon: BuildcdjPages  Line 3 Object required: library"));
    EXPECT_THAT(thumbnails.made, ElementsAre("first"));
    EXPECT_EQ(Count(Page(0), "<img "), 1U);
    thumbnails.isMissing = false;
    Build();
    EXPECT_EQ(Count(Page(0), "<img "), 3U);
}

TEST_F(ThumbnailsTest, ShowTheHouseholdsOwnPlaceholderWhereThereIsOne) {
    AddAlbum({.cdjid = "1", .artist = "Alder", .title = "One"});
    files.AddFile(R"(D:\Covers\notfnd.jpg)", "own", MakeDateTime(2020, 1, 1));
    Build();
    EXPECT_THAT(thumbnails.made, ElementsAre("own"));
    EXPECT_THAT(Page(0), HasSubstr("<img"));
}

TEST_F(ThumbnailsTest, StopWhenTheRunIsAborted) {
    AddAlbumWithCover("1", "a.jpg", "picture");
    files.AddFile(PagePath(0), "an old page");
    world.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.starts_with("2."); });
    Build();
    EXPECT_THAT(thumbnails.made, IsEmpty());
    EXPECT_EQ(Page(0), "an old page");
}

}  // namespace
}  // namespace quillon
