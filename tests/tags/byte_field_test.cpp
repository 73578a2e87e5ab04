#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/ansi.h"
#include "platform/failure.h"
#include "tags/tag_writer.h"

namespace quillon {
namespace {

std::string Bytes(std::string_view text, std::size_t length) {
    const std::vector<std::uint8_t> field = ByteField(text, length);
    return {field.begin(), field.end()};
}

TEST(ByteField, FillsAnEmptyTextWithZeroBytes) {
    EXPECT_EQ(Bytes("", 30), std::string(30, '\0'));
    EXPECT_EQ(Bytes("", 1), std::string(1, '\0'));
    EXPECT_EQ(Bytes("", 0), "");
}

TEST(ByteField, PadsWithZeroBytesAndNeverWithBlanks) {
    EXPECT_EQ(Bytes("99", 4), std::string("99\0\0", 4));
    EXPECT_EQ(Bytes("99  ", 6), std::string("99  \0\0", 6));
}

TEST(ByteField, CutsALongerText) {
    EXPECT_EQ(Bytes("12345678901234567890123456789012345", 30), "123456789012345678901234567890");
    EXPECT_EQ(Bytes("abc", 3), "abc");
}

TEST(ByteField, CountsCharactersAndNotTheirUtf8Bytes) {
    EXPECT_EQ(Bytes("\u00E9\u00E8\u20AC", 3), "\xE9\xE8\x80");
    EXPECT_EQ(Bytes("\u00E9\u00E8\u20AC", 2), "\xE9\xE8");
}

TEST(ByteField, GivesEveryByteBackThatTheReaderMakesATextOf) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        EXPECT_EQ(Bytes(AnsiToUtf8(one), 1), one);
    }
}

TEST(ByteField, FailsForACharacterThatTheCodePageLacks) {
    EXPECT_THROW(ByteField("\u4E2D", 30), Failure);
    EXPECT_THROW(ByteField("a\U0001F3B5", 30), Failure);
    EXPECT_THROW(ByteField("a\xFF", 30), Failure);  // no text at all
}

TEST(ByteField, DoesNotMindACharacterBehindTheCut) {
    EXPECT_EQ(Bytes("abc\u4E2D", 3), "abc");
    EXPECT_THROW(ByteField("abc\u4E2D", 4), Failure);
}

TEST(TagFields, AddUpToATag) {
    std::size_t sum = 0;
    for (const TagField& field : TagFields)
        sum += field.length;
    EXPECT_EQ(sum, TagSize);
}

}  // namespace
}  // namespace quillon
