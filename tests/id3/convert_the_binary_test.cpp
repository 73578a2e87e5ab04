#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "id3/tag_record.h"

namespace quillon {
namespace {

std::string Converted(const std::string& bytes) {
    return ConvertTheBinary(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

TEST(ConvertTheBinary, DropsTheZeroBytesThatPadAText) {
    EXPECT_EQ(Converted(std::string("AB") + std::string(28, '\0')), "AB");
}

TEST(ConvertTheBinary, DropsZeroBytesInTheMiddleAndKeepsWhatFollows) {
    EXPECT_EQ(Converted(std::string("AB\0CD", 5)), "ABCD");
}

TEST(ConvertTheBinary, KeepsBlanksAtBothEnds) {
    EXPECT_EQ(Converted("  AB   "), "  AB   ");
}

TEST(ConvertTheBinary, ReadsBytesInTheAnsiCodePage) {
    EXPECT_EQ(Converted("Caf\xE9 \x80"), "Café €");
}

TEST(ConvertTheBinary, HasACharacterForEveryByteButZero) {
    for (int byte = 1; byte < 256; ++byte)
        EXPECT_FALSE(Converted(std::string(1, static_cast<char>(byte))).empty()) << byte;
}

TEST(ConvertTheBinary, KeepsControlBytes) {
    EXPECT_EQ(Converted("a\x01\x1F\r\n"), "a\x01\x1F\r\n");
}

TEST(ConvertTheBinary, MakesNothingOfNothing) {
    EXPECT_EQ(Converted(""), "");
}

}  // namespace
}  // namespace quillon
