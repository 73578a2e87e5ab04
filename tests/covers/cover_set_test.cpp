#include "covers/cover_set.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

class FindExactRecordTest : public ::testing::Test {
  protected:
    void Add(const std::string& name) { covers.Add(name, "D:\\Covers\\" + name); }

    /// The name of the cover found, "" when there is none.
    std::string Find(std::string_view name) {
        const Cover* const found = findExactRecord(world.run, covers, name);
        return found == nullptr ? "" : found->name;
    }

    fakes::FakeWorld world;
    CoverSet covers;
};

TEST_F(FindExactRecordTest, FindsNothingInAnEmptySet) {
    EXPECT_EQ(Find("a.jpg"), "");
    EXPECT_EQ(Find(""), "");
}

TEST_F(FindExactRecordTest, FindsANameWhateverItsLetterCase) {
    Add("Ann - Één.jpg");
    EXPECT_EQ(Find("ANN - ÉÉN.JPG"), "Ann - Één.jpg");
    EXPECT_EQ(Find("Ann - Een.jpg"), "");
    EXPECT_EQ(Find("Ann - Één"), "");
    EXPECT_EQ(Find(""), "");
}

TEST_F(FindExactRecordTest, FindsTheFirstOfOneName) {
    covers.Add("a.jpg", "D:\\Covers\\a.jpg");
    covers.Add("A.JPG", "D:\\Music\\A.JPG");
    EXPECT_EQ(findExactRecord(world.run, covers, "A.jpg")->path, "D:\\Covers\\a.jpg");
}

TEST_F(FindExactRecordTest, PrefersTheExactNameToAnEarlierOneWithApostrophes) {
    Add("Don't.jpg");
    Add("Dont.jpg");
    EXPECT_EQ(Find("dont.jpg"), "Dont.jpg");
}

TEST_F(FindExactRecordTest, LeavesOutApostrophesOnBothSides) {
    Add("Don't.jpg");
    EXPECT_EQ(Find("dont.jpg"), "Don't.jpg");
    EXPECT_EQ(Find("d'o'n't.jpg"), "Don't.jpg");
    EXPECT_EQ(Find("do nt.jpg"), "");
}

TEST_F(FindExactRecordTest, LooksForANameWithApostropheAmongAllNamesInTheirOrder) {
    Add("Dont.jpg");
    Add("Don't.jpg");
    EXPECT_EQ(Find("Don't.jpg"), "Dont.jpg");
}

TEST_F(FindExactRecordTest, RemembersWhatWasDoneToACover) {
    Add("a.jpg");
    findExactRecord(world.run, covers, "a.jpg")->processed = true;
    EXPECT_TRUE(covers.InOrder().front().processed);
}

}  // namespace
}  // namespace quillon
