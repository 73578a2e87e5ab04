#include "reconcile/left_out_music.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LeftOutMusicTest : public ::testing::Test {
  protected:
    const LeftOut::Group& Of(LeftOutFor reason) const { return library.run.leftOut.Of(reason); }

    support::TestLibrary library;
};

TEST_F(LeftOutMusicTest, IsCountedByWhereItLies) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.AddFile(R"(Red\One\CD1\b.mp3)");
    library.AddFile(R"(Red\One\CD1\c.MP3)");
    library.AddFile(R"(Red\One\CD1\d.flac)");
    library.AddFile(R"(Red\One\CD2\Bonus\e.mp3)");
    library.AddFile(R"(Red\One\Scans\front.jpg)");
    library.AddFile(R"(Red\One\f.ogg)");
    library.AddFile(R"(Red\loose.mp3)");
    library.AddFile(R"(Red\loose.txt)");
    library.AddFile("top.wma");
    library.Reconcile();
    EXPECT_EQ(library.run.counts.leftOut, 7U);
    EXPECT_EQ(Of(LeftOutFor::DeeperFolder).files, 4U);
    EXPECT_THAT(Of(LeftOutFor::DeeperFolder).paths,
                ElementsAre(R"(D:\Music\Red\One\CD1)", R"(D:\Music\Red\One\CD2\Bonus)"));
    EXPECT_THAT(Of(LeftOutFor::OtherType).paths, ElementsAre(R"(D:\Music\Red\One\f.ogg)"));
    EXPECT_THAT(Of(LeftOutFor::NoAlbum).paths,
                ElementsAre(R"(D:\Music\top.wma)", R"(D:\Music\Red\loose.mp3)"));
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|1"));
}

TEST_F(LeftOutMusicTest, IsCountedInTheFlatLayout) {
    library.run.settings.FlatStructure = true;
    library.AddFile("Red_a.mp3");
    library.AddFile("nobody.mp3");
    library.AddFile("Red_b.flac");
    library.AddFile("Red_cover.jpg");
    library.AddFile(R"(Folder\Red_c.mp3)");
    library.Reconcile();
    EXPECT_EQ(library.run.counts.leftOut, 3U);
    EXPECT_THAT(Of(LeftOutFor::NoAlbum).paths, ElementsAre(R"(D:\Music\nobody.mp3)"));
    EXPECT_THAT(Of(LeftOutFor::OtherType).paths, ElementsAre(R"(D:\Music\Red_b.flac)"));
    EXPECT_THAT(Of(LeftOutFor::DeeperFolder).paths, ElementsAre(R"(D:\Music\Folder)"));
}

TEST_F(LeftOutMusicTest, IsCountedInTheRootThatHoldsTheLibraryFolders) {
    library.run.settings.LibraryDepthOption = true;
    library.run.LibraryFolders = {{R"(D:\Music\Rock)", "Rock"}};
    library.AddFile(R"(Rock\Red\One\a.mp3)");
    library.AddFile("top.mp3");
    library.Reconcile();
    EXPECT_THAT(Of(LeftOutFor::NoAlbum).paths, ElementsAre(R"(D:\Music\top.mp3)"));
}

TEST_F(LeftOutMusicTest, IsNotThatOfExcludedArtists) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.AddFile(R"(Blue\One\CD1\a.mp3)");
    library.run.ExcludeEmpty = false;
    library.run.ExcludeList = {"blue"};
    library.Reconcile();
    EXPECT_EQ(library.run.counts.leftOut, 0U);
}

TEST_F(LeftOutMusicTest, IsNotWhatAMachineKeepsForItself) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.AddFile(R"(Red\One\._a.mp3)");
    library.AddFile(R"(Red\One\.AppleDouble\a.mp3)");
    library.AddFile(R"(Red\One\@eaDir\a.mp3)");
    library.AddFile(R"(Red\One\CD1\._b.mp3)");
    library.Reconcile();
    EXPECT_EQ(library.run.counts.leftOut, 0U);
    EXPECT_THAT(library.Albums(), ElementsAre("Red|One|1"));
}

TEST_F(LeftOutMusicTest, CostsNoListingWhereThereIsNone) {
    library.AddFile(R"(Red\One\a.mp3)");
    library.AddFile(R"(Red\One\cover.jpg)");
    library.calls.Forget();
    library.Reconcile();
    EXPECT_THAT(library.calls.Of({"SubFolders", "FilesIn", "NamesIn"}),
                ElementsAre(R"(SubFolders D:\Music)", R"(SubFolders D:\Music\Red)",
                            R"(FilesIn D:\Music\Red\One)"));
}

TEST(LeftOutMusic, EndsInFoldersThatAreNestedWithoutEnd) {
    fakes::Calls calls;
    fakes::FakeFiles files(calls);
    std::string deep = "D:";
    for (int i = 0; i < 40; ++i) {
        deep += R"(\x)";
        files.AddFile(deep + R"(\a.mp3)");
    }
    LeftOut found;
    LeftOutMusic(files, found).NoteDeeper("D:", std::vector<std::string>{"x"});
    EXPECT_EQ(found.Total(), 16U);
}

}  // namespace
}  // namespace quillon
