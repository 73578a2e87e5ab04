#include "reconcile/tag_numbers.h"

#include <gtest/gtest.h>

#include "platform/failure.h"

namespace quillon {
namespace {

TEST(TagNumbers, AskedForAreThoseThatARowCanHold) {
    EXPECT_EQ(AskedNumberIn("7"), 7);
    EXPECT_EQ(AskedNumberIn("0"), 0);
    EXPECT_EQ(AskedNumberIn("32767"), 32767);
    for (const char* const text : {"", "x", "-1", "32768"})
        EXPECT_EQ(AskedNumberIn(text), std::nullopt) << text;
}

TEST(TagNumbers, ToBeStoredFailBeyondSixteenBits) {
    EXPECT_EQ(StoredNumberIn("-3"), -3);
    EXPECT_EQ(StoredNumberIn("x"), std::nullopt);
    EXPECT_THROW(StoredNumberIn("40000"), Failure);
}

TEST(TagNumbers, OfDiscsAreTheFirstWhereNoneIsNamed) {
    EXPECT_EQ(DiscNumberIn("2"), 2);
    EXPECT_EQ(DiscNumberIn("99"), 99);
    for (const char* const text : {"", "x", "0", "100"})
        EXPECT_EQ(DiscNumberIn(text), 1) << text;
}

}  // namespace
}  // namespace quillon
