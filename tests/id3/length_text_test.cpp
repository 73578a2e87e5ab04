#include "id3/length_text.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(LengthInComment, IsTheTextBetweenTheQuotes) {
    EXPECT_EQ(LengthInComment("Length='184'"), "184");
    EXPECT_EQ(LengthInComment("ripped, Length='3:04' ok"), "3:04");
    EXPECT_EQ(LengthInComment("Length=''"), "");
}

TEST(LengthInComment, ReachesToTheEndWhenTheFieldCutTheQuoteOff) {
    EXPECT_EQ(LengthInComment("a comment of many l Length='184"), "184");
}

TEST(LengthInComment, IsNoneInAnotherComment) {
    EXPECT_EQ(LengthInComment(""), std::nullopt);
    EXPECT_EQ(LengthInComment("Length=184"), std::nullopt);
    EXPECT_EQ(LengthInComment("length='184'"), std::nullopt);
}

TEST(LengthComment, IsReadBackAsWritten) {
    EXPECT_EQ(LengthComment("184"), "Length='184'");
    EXPECT_EQ(LengthInComment(LengthComment("184")), "184");
}

TEST(LengthInDifference, IsTheNumberBehindTheWord) {
    EXPECT_EQ(LengthInDifference("Length=184"), 184);
    EXPECT_EQ(LengthInDifference(LengthDifference("185")), 185);
    EXPECT_EQ(LengthInDifference("185"), 185);
}

TEST(LengthInDifference, IsNoneForWhatIsNoLength) {
    EXPECT_EQ(LengthInDifference("Length="), std::nullopt);
    EXPECT_EQ(LengthInDifference("Length=3:04"), std::nullopt);
    EXPECT_EQ(LengthInDifference("Length=-1"), std::nullopt);
    EXPECT_EQ(LengthInDifference("Length=184.5"), std::nullopt);
    EXPECT_EQ(LengthInDifference("Length=32768"), std::nullopt);
    EXPECT_EQ(LengthInDifference("Length=32767"), 32767);
    EXPECT_EQ(LengthInDifference(""), std::nullopt);
}

}  // namespace
}  // namespace quillon
