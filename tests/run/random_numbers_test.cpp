#include "run/random_numbers.h"

#include <array>
#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(RandomNumbers, AreTheSameAfterTheSameSeed) {
    RandomNumbers one, other;
    one.Seed(MakeDateTime(2026, 11, 15, 5, 38, 55));
    other.Seed(MakeDateTime(2026, 11, 15, 5, 38, 55));
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(one.Next(), other.Next());
}

TEST(RandomNumbers, AreOthersASecondLater) {
    RandomNumbers one, other;
    one.Seed(MakeDateTime(2026, 11, 15, 5, 38, 55));
    other.Seed(MakeDateTime(2026, 11, 15, 5, 38, 56));
    EXPECT_NE(one.Next(), other.Next());
}

TEST(RandomNumbers, AreOthersANanosecondLater) {
    RandomNumbers one, other;
    one.Seed(MakeDateTime(2026, 11, 15, 5, 38, 55), 7);
    other.Seed(MakeDateTime(2026, 11, 15, 5, 38, 55), 8);
    EXPECT_NE(one.Next(), other.Next());
}

TEST(RandomNumbers, AreSpreadEvenlyFromZeroToBelowOne) {
    constexpr int Numbers = 10'000, Bins = 10;
    std::array<int, Bins> bins{};
    RandomNumbers random;
    for (int i = 0; i < Numbers; ++i) {
        const double number = random.Next();
        ASSERT_GE(number, 0.0);
        ASSERT_LT(number, 1.0);
        ++bins.at(static_cast<std::size_t>(number * Bins));
    }
    for (const int count : bins) {
        EXPECT_GT(count, 850);
        EXPECT_LT(count, 1150);
    }
}

}  // namespace
}  // namespace quillon
