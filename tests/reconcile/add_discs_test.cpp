#include <gmock/gmock.h>

#include "tests/reconcile/adding_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Files of several discs that are added.
class AddingDiscs : public AddingTest {
  protected:
    AddingDiscs() { library.run.modern.joinsDiscs = true; }

    void AddSong(const std::string& path, const std::string& song, const std::string& sound) {
        library.files.AddFile(
            R"(D:\New\)" + path,
            sound + std::string(300, 's') + support::TagBytes(TagOf(song, "Ann", "First", 1)));
    }
};

TEST_F(AddingDiscs, ComeIntoFoldersOfTheirOwn) {
    AddSong(R"(Ann\First\CD1\a.mp3)", "Intro", "one");
    AddSong(R"(Ann\First\Disc 2\a.mp3)", "Intro", "two");
    Add();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Ann\First\CD1\Intro.mp3|Intro|1)",
                                              R"(Ann\First\Disc 2\Intro.mp3|Intro|1)"));
    EXPECT_THAT(library.Albums(), ElementsAre("Ann|First|2"));
    EXPECT_THAT(Log(), IsEmpty());
    const auto rows = AllRows();
    Add();
    EXPECT_EQ(AllRows(), rows);
}

TEST_F(AddingDiscs, WithoutTagsAreOfTheAlbumThatTheyLieIn) {
    AddNew(R"(Ann\First\CD1\a.mp3)");
    AddNew(R"(Ann\First\b.mp3)");
    AddNew(R"(CD2\c.mp3)");
    Add();
    EXPECT_THAT(library.Albums(),
                ElementsAre("Ann|First|2", "Unknown|First|2", "Unknown|Unknown|1"));
}

TEST_F(AddingDiscs, TakeTheImageBesideTheirFolder) {
    AddSong(R"(Ann\First\CD1\a.mp3)", "Intro", "one");
    AddImage(R"(Ann\First\cover.jpg)");
    Add();
    EXPECT_TRUE(library.files.FileExists(R"(D:\Covers\Ann - First.jpg)"));
}

TEST_F(AddingDiscs, KeepTwoSongsOfOneTitleApart) {
    AddSong(R"(Ann\First\CD1\a.mp3)", "Intro", "one");
    AddSong(R"(Ann\First\CD1\b.mp3)", "Intro", "two");
    AddSong(R"(Ann\First\CD1\c.mp3)", "Intro", "one");
    for (int run = 0; run < 2; ++run) {
        Add();
        EXPECT_THAT(library.Tracks(), ElementsAre(R"(Ann\First\CD1\Intro (2).mp3|Intro (2)|1)",
                                                  R"(Ann\First\CD1\Intro.mp3|Intro|1)"));
    }
}

TEST_F(AddingDiscs, AreNotAddedAgainWhereTheyWereAddedWithoutADisc) {
    library.run.modern.joinsDiscs = false;
    AddSong(R"(Ann\First\CD2\a.mp3)", "Intro", "one");
    Add();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Ann\First\Intro.mp3|Intro|1)"));
    library.run.modern.joinsDiscs = true;
    Add();
    EXPECT_THAT(library.Tracks(), SizeIs(1));
}

}  // namespace
}  // namespace quillon
