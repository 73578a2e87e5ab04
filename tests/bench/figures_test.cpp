#include "bench/figures.h"

#include <array>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace quillon::bench {
namespace {

TEST(Median, IsTheOneInTheMiddle) {
    EXPECT_EQ(Median({5.0, 1.0, 3.0}), 3.0);
    EXPECT_EQ(Median({2.0}), 2.0);
}

TEST(GrowthExponent, IsTheOneOfThePower) {
    EXPECT_NEAR(GrowthExponent(1.0, 5.0, 20'000, 100'000), 1.0, 1e-9);
    EXPECT_NEAR(GrowthExponent(1.0, 25.0, 20'000, 100'000), 2.0, 1e-9);
    EXPECT_NEAR(GrowthExponent(3.0, 3.0, 20'000, 100'000), 0.0, 1e-9);
}

TEST(SizeFrom, TakesWholeNumbersAboveZeroOnly) {
    EXPECT_EQ(SizeFrom("2000"), 2000U);
    for (const char* const text : {"", "0", "-3", "2k", "2000 ", "x"})
        EXPECT_FALSE(SizeFrom(text)) << text;
}

TEST(SizesFrom, TellsTheUsageWhenAWordIsNoSize) {
    std::string program = "bench", word = "many";
    std::array arguments{program.data(), word.data()};
    EXPECT_THROW(SizesFrom(arguments, "bench [TRACKS...]", {1}), std::invalid_argument);
    EXPECT_EQ(SizesFrom(std::span(arguments).first(1), "", {7}), std::vector<std::size_t>{7});
}

}  // namespace
}  // namespace quillon::bench
