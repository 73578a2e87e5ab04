#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using support::RawTag;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Albums of several discs, each in a folder below the album's.
class DiscFolders : public ::testing::Test {
  protected:
    DiscFolders() { library.run.modern.joinsDiscs = true; }

    void Add(const std::string& name, std::uint8_t number, int age) {
        RawTag tag;
        tag.track = number;
        library.AddFile(R"(A\B\)" + name, tag, age);
    }

    /// Two runs: the second sorts what the first has numbered by tags, and the third is to change
    /// nothing.
    void Settle() {
        library.Reconcile();
        library.Reconcile();
    }

    support::TestLibrary library;
};

TEST_F(DiscFolders, BelongToTheirAlbumOneAfterTheOther) {
    Add(R"(CD1\a.mp3)", 0, 5);
    Add(R"(CD1\b.mp3)", 0, 6);
    Add(R"(cd 2\a.mp3)", 0, 1);
    Add(R"(Disc_10\a.mp3)", 0, 0);
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("A|B|4"));
    const auto rows = ElementsAre(R"(A\B\cd 2\a.mp3|a|3)", R"(A\B\CD1\a.mp3|a|1)",
                                  R"(A\B\CD1\b.mp3|b|2)", R"(A\B\Disc_10\a.mp3|a|4)");
    EXPECT_THAT(library.Tracks(), rows);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), rows) << "and the next run changes nothing";
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_EQ(library.run.leftOut.Total(), 0U);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(DiscFolders, AreLeftOutUnlessTheyAreAskedFor) {
    library.run.modern.joinsDiscs = false;
    Add("a.mp3", 0, 0);
    Add(R"(CD2\a.mp3)", 0, 1);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|1)"));
    EXPECT_EQ(library.run.leftOut.Total(), 1U);
}

TEST_F(DiscFolders, FollowLooseFilesWhateverTheirTimes) {
    Add("z.mp3", 0, 9);
    Add(R"(CD1\a.mp3)", 0, 0);
    Settle();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\CD1\a.mp3|a|2)", R"(A\B\z.mp3|z|1)"));
}

TEST_F(DiscFolders, CountTheirTracksFromOneInTags) {
    Add(R"(CD1\a.mp3)", 2, 0);
    Add(R"(CD1\b.mp3)", 1, 1);
    Add(R"(CD2\a.mp3)", 2, 2);
    Add(R"(CD2\b.mp3)", 1, 3);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\CD1\a.mp3|a|2)", R"(A\B\CD1\b.mp3|b|1)",
                                              R"(A\B\CD2\a.mp3|a|4)", R"(A\B\CD2\b.mp3|b|3)"));
    library.run.modern.numbersFromTags = true;
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\CD1\a.mp3|a|2)", R"(A\B\CD1\b.mp3|b|1)",
                                              R"(A\B\CD2\a.mp3|a|4)", R"(A\B\CD2\b.mp3|b|3)"));
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(DiscFolders, HaveGapsAndDoublesOfTheirOwn) {
    library.run.modern.numbersFromTags = true;
    Add(R"(CD1\a.mp3)", 1, 0);
    Add(R"(CD2\a.mp3)", 1, 0);
    Add(R"(CD2\b.mp3)", 3, 0);
    Add(R"(CD2\c.mp3)", 3, 0);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\CD1\a.mp3|a|1)", R"(A\B\CD2\a.mp3|a|2)",
                                              R"(A\B\CD2\b.mp3|b|4)", R"(A\B\CD2\c.mp3|c|3)"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Track numbers of the files of A\\B: 2 is missing on disc 2, "
                            "3 is there twice on disc 2"));
    library.host.log.clear();
    library.Reconcile();
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(DiscFolders, ThatSwapTheirNamesSwapTheirNumbers) {
    library.run.modern.numbersFromTags = true;
    library.AddAlbumRow("252E671073EC0500", "A", "B", 2);
    library.AddTrackRow("252E671073EC0500", 1, R"(D:\Music\A\B\CD2\a.mp3)", "a");
    library.AddTrackRow("252E671073EC0500", 2, R"(D:\Music\A\B\CD1\a.mp3)", "a");
    Add(R"(CD1\a.mp3)", 1, 0);
    Add(R"(CD2\a.mp3)", 1, 0);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\CD1\a.mp3|a|1)", R"(A\B\CD2\a.mp3|a|2)"));
}

TEST_F(DiscFolders, OfOneNumberAreOneDisc) {
    Add(R"(CD1\a.mp3)", 0, 0);
    Add(R"(CD2\a.mp3)", 0, 0);
    Add(R"(Disc 1\a.mp3)", 0, 9);
    Settle();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\CD1\a.mp3|a|1)", R"(A\B\CD2\a.mp3|a|3)",
                                              R"(A\B\Disc 1\a.mp3|a|2)"));
}

TEST_F(DiscFolders, HoldNoFoldersOfTheirOwnKind) {
    Add(R"(CD1\a.mp3)", 0, 0);
    Add(R"(CD1\CD2\a.mp3)", 0, 0);
    Add(R"(Scans\a.mp3)", 0, 0);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\CD1\a.mp3|a|1)"));
    EXPECT_THAT(library.run.leftOut.Of(LeftOutFor::DeeperFolder).paths,
                ElementsAre(R"(D:\Music\A\B\Scans)", R"(D:\Music\A\B\CD1\CD2)"));
}

TEST_F(DiscFolders, ThatCannotBeListedKeepTheWholeAlbumAsItIs) {
    Add(R"(CD1\a.mp3)", 0, 0);
    Add(R"(CD2\a.mp3)", 0, 0);
    Settle();
    library.files.unlistable.insert(R"(D:\Music\A\B\CD1)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("A|B|2"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\CD1\a.mp3|a|1)", R"(A\B\CD2\a.mp3|a|2)"));
    EXPECT_THAT(library.host.log, Contains(HasSubstr(R"(D:\Music\A\B\CD1)")));
}

TEST_F(DiscFolders, ThatAreGoneTakeTheirRowsWithThem) {
    Add(R"(CD1\a.mp3)", 0, 0);
    Add(R"(CD2\a.mp3)", 0, 0);
    Settle();
    library.RemoveFile(R"(A\B\CD1\a.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("A|B|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\CD2\a.mp3|a|1)"));
}

}  // namespace
}  // namespace quillon
