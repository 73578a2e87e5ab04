#include "run/text_pool.h"

#include <gtest/gtest.h>
#include <string>

namespace quillon {
namespace {

TEST(TextPool, NumbersTextsFromZero) {
    TextPool pool;
    EXPECT_EQ(pool.Add("a"), 0U);
    EXPECT_EQ(pool.Add(""), 1U);
    EXPECT_EQ(pool.Add("a"), 0U);
    EXPECT_EQ(pool.Text(1), "");
    EXPECT_EQ(pool.Count(), 2U);
}

TEST(TextPool, TakesTextsOfOtherLetterCaseForTheSameAndKeepsTheFirstSpelling) {
    TextPool pool;
    pool.Add("Ölvindr");
    EXPECT_EQ(pool.Add("öLVINDR"), 0U);
    EXPECT_EQ(pool.Text(0), "Ölvindr");
}

TEST(TextPool, FindsOnlyWhatWasAdded) {
    TextPool pool;
    pool.Add("Folk");
    EXPECT_EQ(pool.Find("FOLK"), 0U);
    EXPECT_FALSE(pool.Find("Fol"));
    EXPECT_FALSE(pool.Find(""));
}

TEST(TextPool, KeepsItsTextsWhereTheyAre) {
    TextPool pool;
    const std::string_view first = pool.Text(pool.Add("first"));
    for (int i = 0; i < 10'000; ++i)
        pool.Add(std::to_string(i));
    EXPECT_EQ(first.data(), pool.Text(0).data());
}

}  // namespace
}  // namespace quillon
