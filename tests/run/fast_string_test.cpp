#include "run/fast_string.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(FastString, IsEmptyAtFirst) {
    EXPECT_EQ(FastString().value(), "");
}

TEST(FastString, JoinsItsPartsWithNothingBetween) {
    FastString text;
    text.Add("SELECT ");
    text.Add("");
    text.Add("ID");
    EXPECT_EQ(text.value(), "SELECT ID");
}

TEST(FastString, TakesMorePartsThanItsFirstRoom) {
    FastString text;
    std::string expected;
    for (int i = 0; i < 1001; ++i) {
        text.Add(std::to_string(i));
        expected += std::to_string(i);
    }
    EXPECT_EQ(text.value(), expected);
}

TEST(FastString, StartsAgainAfterReset) {
    FastString text;
    text.Add("old");
    text.Reset();
    EXPECT_EQ(text.value(), "");
    text.Add("new");
    EXPECT_EQ(text.value(), "new");
}

}  // namespace
}  // namespace quillon
