#include "tags/length_text.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(LengthInComment, IsTheTextBetweenTheQuotes) {
    EXPECT_EQ(LengthInComment("Length='184'")->seconds, "184");
    EXPECT_EQ(LengthInComment("ripped, Length='3:04' ok")->seconds, "3:04");
    EXPECT_EQ(LengthInComment("x Length='7' y='8'")->seconds, "7");
    EXPECT_EQ(LengthInComment("Length=''")->seconds, "");
    EXPECT_TRUE(LengthInComment("Length=''")->isClosed);
}

TEST(LengthInComment, ReachesToTheEndWhenTheFieldCutTheQuoteOff) {
    const auto length = LengthInComment("a comment of many l Length='184");
    ASSERT_TRUE(length);
    EXPECT_EQ(length->seconds, "184");
    EXPECT_FALSE(length->isClosed);
}

TEST(LengthInComment, IsNoneInAnotherComment) {
    EXPECT_FALSE(LengthInComment(""));
    EXPECT_FALSE(LengthInComment("Length=184"));
    EXPECT_FALSE(LengthInComment("length='184'"));
}

TEST(LengthComment, IsReadBackAsWritten) {
    EXPECT_EQ(LengthComment("184"), "Length='184'");
    const std::string comment = LengthComment("184");
    EXPECT_EQ(LengthInComment(comment)->seconds, "184");
}

TEST(CommentWithLength, IsTheLengthAloneWhereThereWasNoComment) {
    EXPECT_EQ(CommentWithLength("", "184"), "Length='184'");
    EXPECT_EQ(CommentWithLength(std::string(28, ' '), "184"), "Length='184'");
}

TEST(CommentWithLength, ReplacesTheOldLengthWhereItStands) {
    EXPECT_EQ(CommentWithLength("Length='99'", "184"), "Length='184'");
    EXPECT_EQ(CommentWithLength("a Length='1840' b", "184"), "a Length='184' b");
    EXPECT_EQ(CommentWithLength("Length='broken", "184"), "Length='184'");
    EXPECT_EQ(CommentWithLength("Length='' rest", "184"), "Length='184' rest");
    EXPECT_EQ(CommentWithLength("Length='1' Length='2'", "184"), "Length='184' Length='2'");
}

TEST(CommentWithLength, IsTheSameWhenDoneTwice) {
    for (const char* comment : {"", "live", "a Length='1840' b", "1234567890 Length='1' 901234",
                                "1234567890123456 Length='1'", "Length='broken"}) {
        const std::string once = CommentWithLength(comment, "184");
        EXPECT_EQ(CommentWithLength(once, "184"), once);
    }
}

TEST(CommentWithLength, PutsTheLengthBehindATextIfBothFit) {
    EXPECT_EQ(CommentWithLength("live", "184"), "live Length='184'");
    EXPECT_EQ(CommentWithLength("live  ", "184"), "live Length='184'");
    EXPECT_EQ(CommentWithLength("123456789012345", "184"), "123456789012345 Length='184'");
}

TEST(CommentWithLength, KeepsTheTextAloneIfBothDoNotFit) {
    EXPECT_EQ(CommentWithLength("1234567890123456", "184"), "1234567890123456");
    EXPECT_EQ(CommentWithLength("123456789012345", "1840"), "123456789012345");
    EXPECT_EQ(CommentWithLength("123456789012345678901234567890", "1"),
              "123456789012345678901234567890");
}

TEST(CommentWithLength, CutsTheTextAroundALengthThatHasGrown) {
    EXPECT_EQ(CommentWithLength("12345678 Length='1' 12345678", "184"),
              "12345678 Length='184' 123456");
    EXPECT_EQ(CommentWithLength("12345678901234567 Length='1'", "184"),
              "1234567890123456Length='184'");
}

TEST(CommentWithLength, CountsCharactersAndNotTheirUtf8Bytes) {
    EXPECT_EQ(CommentWithLength("\u00E923456789012345", "184"),
              "\u00E923456789012345 Length='184'");
}

TEST(CommentWithLength, LeavesATextThatTheCodePageCannotHold) {
    EXPECT_EQ(CommentWithLength("初恋 Length='9'", "184"), "初恋 Length='9'");
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
