#include "platform/ansi.h"

#include <gtest/gtest.h>
#include <set>

namespace quillon {
namespace {

TEST(Ansi, EveryByteSurvivesARoundTrip) {
    std::set<std::string> characters;
    for (int value = 0; value < 256; ++value) {
        const std::string byte(1, static_cast<char>(value));
        const std::string text = AnsiToUtf8(byte);
        EXPECT_TRUE(IsValidUtf8(text)) << value;
        EXPECT_EQ(Utf8ToAnsi(text), byte) << value;
        EXPECT_EQ(Utf8ToAnsiExactly(text), byte) << value;
        characters.insert(text);
    }
    EXPECT_EQ(characters.size(), 256U);
}

TEST(Ansi, ReadsTheWindowsCharacters) {
    EXPECT_EQ(AnsiToUtf8("\x80\x85\x92\x9F\xE9\xFF"), "€…’Ÿéÿ");
    EXPECT_EQ(AnsiToUtf8("\x81\x8D\x8F\x90\x9D"), "\u0081\u008D\u008F\u0090\u009D");
    const std::vector<std::uint8_t> bytes{0x4D, 0xF6, 0x00};
    EXPECT_EQ(AnsiToUtf8(bytes), std::string("Mö\0", 4));
}

TEST(Ansi, WritesAQuestionMarkForWhatTheCodePageLacks) {
    EXPECT_EQ(Utf8ToAnsi("aŁb日𝄞"), "a?b??");
    EXPECT_EQ(Utf8ToAnsi("a\xFFz\xED\xA0\x80"), "a?z?");
    EXPECT_EQ(Utf8ToAnsi("\u0080"), "?");  // a control character that no byte stands for
}

TEST(Ansi, ExactlyRefusesWhatTheCodePageLacks) {
    EXPECT_EQ(Utf8ToAnsiExactly("café €"), "caf\xE9 \x80");
    EXPECT_EQ(Utf8ToAnsiExactly("Łódź"), std::nullopt);
    EXPECT_EQ(Utf8ToAnsiExactly("a\xE9"), std::nullopt);
    EXPECT_EQ(Utf8ToAnsiExactly(""), "");
}

TEST(IsValidUtf8, KnowsWellFormedText) {
    for (const char* const text : {"", "abc", "é", "日本", "𝄞", "\uFFFF", "\U0010FFFF"})
        EXPECT_TRUE(IsValidUtf8(text)) << text;
}

TEST(IsValidUtf8, RefusesBrokenBytes) {
    for (const char* const bytes :
         {"\x80", "\xC3", "a\xC3z", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE2\x82",
          "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80",
          "\xF5\x80\x80\x80", "\xFF", "\xFE"})
        EXPECT_FALSE(IsValidUtf8(bytes));
}

TEST(ToValidUtf8, ReadsStrayBytesAsAnsi) {
    EXPECT_EQ(ToValidUtf8("café"), "café");
    EXPECT_EQ(ToValidUtf8("caf\xE9 – x"), "café – x");
    EXPECT_TRUE(IsValidUtf8(ToValidUtf8("\xED\xA0\x80\xFF\xC3")));
}

TEST(Utf16Length, CountsUnits) {
    EXPECT_EQ(Utf16Length(""), 0U);
    EXPECT_EQ(Utf16Length("aé日"), 3U);
    EXPECT_EQ(Utf16Length("𝄞"), 2U);
    EXPECT_EQ(Utf16Length("\xED\xA0\x80"), 1U);
    EXPECT_EQ(Utf16Length("\xFF"), 1U);
}

}  // namespace
}  // namespace quillon
