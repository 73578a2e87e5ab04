#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reconcile/number_order.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Numbers = std::vector<std::int64_t>;

/// The files' positions in the order of their numbers; a tag number of 0 stands for none.
std::vector<std::size_t> OrderOf(const Numbers& before, const Numbers& free, const Numbers& tags) {
    return OrderOfOneAge(before, free, [&tags](std::size_t file) -> std::optional<std::int64_t> {
        if (tags[file] == 0) return std::nullopt;
        return tags[file];
    });
}

std::vector<std::size_t> OrderByTags(const Numbers& tags) {
    Numbers free;
    for (std::size_t i = 0; i < tags.size(); ++i)
        free.push_back(static_cast<std::int64_t>(i) + 1);
    return OrderOf(Numbers(tags.size(), 0), free, tags);
}

TEST(OrderOfOneAge, IsThatOfTheNumbersBeforeAndAsksForNoTag) {
    const auto none = [](std::size_t) -> std::optional<std::int64_t> {
        ADD_FAILURE() << "no tag is needed";
        return std::nullopt;
    };
    EXPECT_THAT(OrderOfOneAge(Numbers{3, 1, 2}, Numbers{1, 2, 3}, none), ElementsAre(1, 2, 0));
    // A gap, and numbers that begin elsewhere now.
    EXPECT_THAT(OrderOfOneAge(Numbers{9, 1, 4}, Numbers{5, 6, 8}, none), ElementsAre(1, 2, 0));
}

TEST(OrderOfOneAge, IsThatOfTheTagsWhereANumberBeforeIsMissingOrThereTwice) {
    EXPECT_THAT(OrderOf({0, 1, 2}, {1, 2, 3}, {3, 2, 1}), ElementsAre(2, 1, 0));
    EXPECT_THAT(OrderOf({1, 1, 2}, {1, 2, 3}, {3, 2, 1}), ElementsAre(2, 1, 0));
    EXPECT_THAT(OrderOf({-1, 1, 2}, {1, 2, 3}, {3, 2, 1}), ElementsAre(2, 1, 0));
}

TEST(OrderOfOneAge, LeavesTagNumbersAndPutsTheOthersBetweenByName) {
    EXPECT_THAT(OrderByTags({3, 1, 0}), ElementsAre(1, 2, 0));
    EXPECT_THAT(OrderByTags({0, 0, 0, 1}), ElementsAre(3, 0, 1, 2));
    EXPECT_THAT(OrderByTags({0, 0, 0}), ElementsAre(0, 1, 2));
    EXPECT_THAT(OrderByTags({1, 2, 3}), ElementsAre(0, 1, 2));
}

/// With the first song gone the last one would otherwise come first.
TEST(OrderOfOneAge, IsByTagWhereANumberIsBeyondThoseThatThereAre) {
    EXPECT_THAT(OrderByTags({4, 3, 2}), ElementsAre(2, 1, 0));
    EXPECT_THAT(OrderByTags({15, 0, 13}), ElementsAre(2, 1, 0));
}

TEST(OrderOfOneAge, IsByTagAndThenByNameWhereATagNumberIsThereTwice) {
    EXPECT_THAT(OrderByTags({2, 1, 2}), ElementsAre(1, 0, 2));
}

/// A library that was copied without its times.
class EqualAgesTest : public ::testing::Test {
  protected:
    static RawTag NumberedTag(std::uint8_t track) {
        RawTag tag;
        tag.track = track;
        return tag;
    }

    void AddAlbum(const std::vector<std::uint8_t>& tagNumbers) {
        char name = 'a';
        for (const std::uint8_t number : tagNumbers) {
            const std::string path = std::string(R"(A\B\)") + name++ + ".mp3";
            if (number == 0) {
                library.AddFile(path);
            } else {
                library.AddFile(path, NumberedTag(number));
            }
        }
    }

    /// The numbers of a.mp3, b.mp3 ...
    std::string Numbers() {
        std::string numbers;
        for (const std::string& number :
             library.Rows("SELECT Track FROM Tracks ORDER BY SoundFile"))
            numbers += number + ' ';
        return numbers;
    }

    /// A further run must change nothing and read no tag.
    void ExpectNothingChanges() {
        const auto rows = library.Rows("SELECT * FROM Tracks ORDER BY ID");
        library.calls.Forget();
        library.run.counts = {};
        library.Reconcile();
        EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), rows);
        EXPECT_EQ(library.run.counts.tracksUnchanged, rows.size());
        EXPECT_THAT(library.calls.Of({"OpenBinary D:\\Music"}), IsEmpty());
    }

    support::TestLibrary library;
};

TEST_F(EqualAgesTest, LeaveTracksTheNumbersOfTheirTags) {
    AddAlbum({3, 1, 2});
    library.Reconcile();
    EXPECT_EQ(Numbers(), "3 1 2 ");
    ExpectNothingChanges();
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(EqualAgesTest, NumberUntaggedTracksByName) {
    AddAlbum({0, 0, 0});
    library.Reconcile();
    EXPECT_EQ(Numbers(), "1 2 3 ");
    ExpectNothingChanges();
}

TEST_F(EqualAgesTest, NumberUntaggedTracksBetweenTheOthers) {
    AddAlbum({0, 3, 0, 1});
    library.Reconcile();
    EXPECT_EQ(Numbers(), "2 3 4 1 ");
    ExpectNothingChanges();
}

TEST_F(EqualAgesTest, NumberTracksBeyondTheCountByTheirTags) {
    AddAlbum({15, 14, 13});
    library.Reconcile();
    EXPECT_EQ(Numbers(), "3 2 1 ");
    ExpectNothingChanges();
}

TEST_F(EqualAgesTest, CloseTheGapOfATrackThatIsGoneInTheirOrder) {
    AddAlbum({4, 3, 2, 1});
    library.Reconcile();
    library.RemoveFile(R"(A\B\b.mp3)");
    library.Reconcile();
    EXPECT_EQ(Numbers(), "3 2 1 ");
    ExpectNothingChanges();
}

TEST_F(EqualAgesTest, LetANewTrackTakeItsPlaceByTag) {
    AddAlbum({4, 3, 1});
    library.Reconcile();
    EXPECT_EQ(Numbers(), "2 3 1 ");
    library.AddFile(R"(A\B\d.mp3)", NumberedTag(2));
    library.Reconcile();
    EXPECT_EQ(Numbers(), "3 4 1 2 ");
    ExpectNothingChanges();
}

TEST_F(EqualAgesTest, LetANewTrackWithoutATagTakeItsPlaceByNameAmongTheTags) {
    AddAlbum({2, 1});
    library.Reconcile();
    library.AddFile(R"(A\B\0.mp3)");
    library.Reconcile();
    EXPECT_EQ(Numbers(), "3 2 1 ");
    ExpectNothingChanges();
}

TEST_F(EqualAgesTest, CountOnlyAmongFilesOfOneAge) {
    library.AddFile(R"(A\B\a.mp3)", NumberedTag(2), 5);
    library.AddFile(R"(A\B\b.mp3)", NumberedTag(1), 5);
    library.AddFile(R"(A\B\c.mp3)", NumberedTag(3), 1);
    library.Reconcile();
    EXPECT_EQ(Numbers(), "2 1 3 ");
    // The oldest comes first; the others keep their order.
    library.Reconcile();
    EXPECT_EQ(Numbers(), "3 2 1 ");
    ExpectNothingChanges();
}

TEST_F(EqualAgesTest, BringRowsThatLostTheirNumbersBackToTheirTags) {
    AddAlbum({3, 1, 2});
    library.Reconcile();
    library.Execute("UPDATE Tracks SET Track = 0");
    library.Reconcile();
    EXPECT_EQ(Numbers(), "3 1 2 ");
    ExpectNothingChanges();
}

TEST_F(EqualAgesTest, ReadEachTagOnceWhenTheAlbumIsNew) {
    AddAlbum({0, 0, 7});
    library.Reconcile();
    EXPECT_THAT(library.calls.Of({"OpenBinary D:\\Music"}), SizeIs(3));
}

}  // namespace
}  // namespace quillon
