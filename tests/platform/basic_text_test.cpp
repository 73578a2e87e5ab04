#include "platform/basic_text.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(LetterCase, ChangesLettersOfEveryAlphabet) {
    EXPECT_EQ(LowerCase("ABC xyz 12"), "abc xyz 12");
    EXPECT_EQ(UpperCase("abc XYZ 12"), "ABC XYZ 12");
    EXPECT_EQ(LowerCase("ÀÉÎÕÜÿŸ"), "àéîõüÿÿ");
    EXPECT_EQ(UpperCase("àéîõüÿ"), "ÀÉÎÕÜŸ");
    EXPECT_EQ(LowerCase("ΑΒΓ ЖДИ"), "αβγ жди");
}

TEST(LetterCase, LeavesLettersWhoseOtherCaseBelongsToAnother) {
    for (const char* const letter : {"ß", "µ", "ſ", "ı", "\u212A", "ẞ"}) {
        EXPECT_EQ(UpperCase(letter), letter);
        EXPECT_EQ(LowerCase(letter), letter);
    }
}

TEST(BeginningIn, CountsTheBytesThatSayIt) {
    EXPECT_EQ(BeginningIn("Alder - Dawn", "ALDER"), 5U);
    EXPECT_EQ(BeginningIn("Ölvindr", "öl"), 3U);
    EXPECT_EQ(BeginningIn("Alder and Dawn: Ölvindr", "alder AND dawn: öl"), 19U);
    EXPECT_EQ(BeginningIn("Alder and Dawn: Ölvindr", "alder AND down: öl"), std::nullopt);
    EXPECT_EQ(BeginningIn("Alder and", "alder and dawn"), std::nullopt);
    EXPECT_EQ(BeginningIn("Ⱥx", "ⱥ"), 2U) << "whose small form takes three bytes";
    EXPECT_EQ(BeginningIn("anything", ""), 0U);
}

TEST(BeginningIn, IsNoneInATextThatBeginsOtherwise) {
    EXPECT_EQ(BeginningIn("Alder", "Alders"), std::nullopt);
    EXPECT_EQ(BeginningIn("Alder", "Elder"), std::nullopt);
    EXPECT_EQ(BeginningIn("o", "ö"), std::nullopt);
    EXPECT_EQ(BeginningIn("ä", "\xE4"), std::nullopt);
    EXPECT_EQ(BeginningIn("", "a"), std::nullopt);
}

TEST(LetterCase, LeavesBytesThatAreNoText) {
    EXPECT_EQ(UpperCase("a\xFFz\xC3"), "A\xFFZ\xC3");
    EXPECT_EQ(LowerCase("\xED\xA0\x80"
                        "A"),
              "\xED\xA0\x80"
              "a");
}

TEST(EqualIgnoringCase, ComparesWholeTexts) {
    EXPECT_TRUE(EqualIgnoringCase("Motörhead", "MOTÖRHEAD"));
    EXPECT_TRUE(EqualIgnoringCase("", ""));
    EXPECT_FALSE(EqualIgnoringCase("a", "ab"));
    EXPECT_FALSE(EqualIgnoringCase("ab", "a"));
    EXPECT_FALSE(EqualIgnoringCase("o", "ö"));
    EXPECT_TRUE(EqualIgnoringCase("abcdefgöh", "ABCDEFGÖH"));
    EXPECT_TRUE(EqualIgnoringCase("abcdefgöh", "abcdefgÖH")) << "cut by a block of eight bytes";
    EXPECT_FALSE(EqualIgnoringCase("abcdefgöh", "abcdefgôh"));
    EXPECT_FALSE(EqualIgnoringCase("abcdefg\xC3", "abcdefg\xC3\xB6"));
}

TEST(WindowsNameLess, OrdersAsAVolumeLists) {
    std::vector<std::string> names{"_x", "b", "a", "B2", "Ä", "A", "a1", "é", "Z", "01", "~"};
    std::sort(names.begin(), names.end(), WindowsNameLess);
    EXPECT_EQ(names, (std::vector<std::string>{"01", "A", "a", "a1", "b", "B2", "Z", "_x", "~", "Ä",
                                               "é"}));
}

TEST(WindowsNameLess, OrdersByTheFirstLetterThatDiffers) {
    EXPECT_TRUE(WindowsNameLess("Name of a song, B, z", "name of a song, c, A"));
    EXPECT_FALSE(WindowsNameLess("name of a song, c, A", "Name of a song, B, z"));
    EXPECT_TRUE(WindowsNameLess("name of a song, [", "name of a song, _"));
    EXPECT_TRUE(WindowsNameLess("name of a song, z", "name of a song, _")) << "as a capital";
}

TEST(WindowsNameLess, ComparesUtf16Units) {
    // The musical symbol is a surrogate pair, D834 DD1E, and so comes before U+FF21.
    EXPECT_TRUE(WindowsNameLess("\U0001D11E", "\uFF21"));
    EXPECT_FALSE(WindowsNameLess("\uFF21", "\U0001D11E"));
}

TEST(Trim, TakesBlanksAlone) {
    EXPECT_EQ(Trim("  a b "), "a b");
    EXPECT_EQ(Trim("\ta\t"), "\ta\t");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Trim(""), "");
}

TEST(Split, GivesEveryPiece) {
    using Pieces = std::vector<std::string>;
    EXPECT_EQ(Split("a,b,,c,", ","), (Pieces{"a", "b", "", "c", ""}));
    EXPECT_EQ(Split("abc", ","), Pieces{"abc"});
    EXPECT_EQ(Split("", ","), Pieces{});
    EXPECT_EQ(Split("a--b", "--"), (Pieces{"a", "b"}));
    EXPECT_EQ(Split("a,b", ""), Pieces{"a,b"});
}

TEST(Replace, ReplacesEveryOccurrenceOnce) {
    EXPECT_EQ(Replace("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(Replace("a:b:c", ":", ""), "abc");
    EXPECT_EQ(Replace("abc", "", "x"), "abc");
    EXPECT_EQ(Replace("abc", "B", "x"), "abc");
    EXPECT_EQ(Replace("", "a", "b"), "");
}

TEST(Right, CountsCharacters) {
    EXPECT_EQ(Right("song.mp3", 4), ".mp3");
    EXPECT_EQ(Right("né", 1), "é");
    EXPECT_EQ(Right("né", 2), "né");
    EXPECT_EQ(Right("ab", 5), "ab");
    EXPECT_EQ(Right("ab", 0), "");
    EXPECT_EQ(Right("", 3), "");
}

}  // namespace
}  // namespace quillon
