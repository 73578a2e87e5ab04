#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tags/tag.h"

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

TEST(ConvertTheBinary, ReadsUtf8AsThat) {
    EXPECT_EQ(Converted("初恋"), "初恋");
    EXPECT_EQ(Converted("Dämmerung" + std::string(5, '\0')), "Dämmerung");
    EXPECT_EQ(Converted("Ель 🎵 x"), "Ель 🎵 x");
    EXPECT_EQ(Converted(std::string("初\0恋", 7)), "初恋");
}

TEST(ConvertTheBinary, LeavesOutTheCharacterThatTheFieldHasCut) {
    const std::string text = "初恋初恋初恋初恋初恋";
    ASSERT_EQ(text.size(), 30U);
    EXPECT_EQ(Converted("x" + text.substr(0, 29)), "x" + text.substr(0, 27));
    EXPECT_EQ(Converted("xy" + text.substr(0, 28)), "xy" + text.substr(0, 27));
    EXPECT_EQ(Converted("xyz" + text.substr(0, 27)), "xyz" + text.substr(0, 27));
    // Some programs end each field with a zero byte.
    EXPECT_EQ(Converted("x" + text.substr(0, 28) + '\0'), "x" + text.substr(0, 27));
    EXPECT_EQ(Converted("xyz🎵🎵🎵🎵🎵🎵\xF0\x9F\x8E"), "xyz🎵🎵🎵🎵🎵🎵");
}

TEST(ConvertTheBinary, LeavesNothingOutWhereNothingCanHaveBeenCut) {
    EXPECT_EQ(Converted("初\xE5" + std::string(3, '\0')), "åˆ\u009Då");
    EXPECT_EQ(Converted("Caf\xE9"), "Café");
    EXPECT_EQ(Converted("ÄÖ\xFF"), "Ã„Ã–ÿ");
}

TEST(ConvertTheBinary, ReadsWhatIsNotWellFormedInTheAnsiCodePage) {
    EXPECT_EQ(Converted("\xC4rger"), "Ärger");
    EXPECT_EQ(Converted("初 \xC4rger"), "åˆ\u009D Ärger");
    EXPECT_EQ(Converted("\xC0\xAF"), "À¯");            // an overlong form
    EXPECT_EQ(Converted("\xED\xA0\x80"), "í\u00A0€");  // a surrogate
}

TEST(ConvertTheBinary, MakesNothingOfNothing) {
    EXPECT_EQ(Converted(""), "");
}

}  // namespace
}  // namespace quillon
