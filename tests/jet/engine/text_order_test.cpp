#include "jet/engine/text_order.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "jet/storage/index/index_key.h"

namespace jet::engine {

namespace {

int Sign(int number) {
    return number < 0 ? -1 : number > 0 ? 1 : 0;
}

/// The order as it is promised, without the shortcuts.
int PlainOrder(const std::string& left, const std::string& right) {
    const std::string a = FoldCase(left), b = FoldCase(right);
    const int order = storage::CompareTexts(a, b);
    return Sign(order != 0 ? order : a.compare(b));
}

std::vector<std::string> RandomTexts() {
    static const std::string pieces[] = {"a",        "B",        "b",        "Z",    "1",
                                         " ",        "-",        "'",        "_",    "[",
                                         ".",        "\\",       "(",        "\x01", "~",
                                         "\xC3\x84", "\xC3\xA4", "\xC3\x9F", "ss",   "\xE6\x97\xA5",
                                         "a\xCC\x88"};
    std::mt19937 random(7);
    std::vector<std::string> texts;
    for (int i = 0; i < 400; ++i) {
        std::string text;
        for (auto length = random() % 5; length > 0; --length)
            text += pieces[random() % std::size(pieces)];
        texts.push_back(text);
    }
    texts.push_back(std::string(254, 'x') + "ab");
    texts.push_back(std::string(254, 'x') + "aA");
    texts.push_back(std::string(254, 'x') + "a");
    return texts;
}

TEST(TextOrder, IsThatOfIndexKeysWithTiesBrokenByTheFoldedText) {
    const std::vector<std::string> texts = RandomTexts();
    for (const std::string& left : texts)
        for (const std::string& right : texts)
            ASSERT_EQ(Sign(CompareTexts(left, right)), PlainOrder(left, right))
                << '"' << left << "\" and \"" << right << '"';
}

TEST(TextOrder, IsZeroExactlyForTextsThatDifferInLetterCaseOnly) {
    EXPECT_EQ(CompareTexts("Abc", "aBC"), 0);
    EXPECT_EQ(CompareTexts("\xC3\x84", "\xC3\xA4"), 0);
    EXPECT_NE(CompareTexts("a", "a "), 0);
    EXPECT_NE(CompareTexts("ab", "a-b"), 0);
    EXPECT_NE(CompareTexts("\xC3\x84", "A"), 0);
}

TEST(TextOrder, SortsAsTheDatabaseDoes) {
    std::vector<std::string> names = {"_x", "co-op", "Coop", "COP", "10", "9", "", "\xC3\xA4", "b"};
    std::sort(names.begin(), names.end(),
              [](const std::string& a, const std::string& b) { return CompareTexts(a, b) < 0; });
    const std::vector<std::string> expected = {"",  "_x",   "10",    "9",  "\xC3\xA4",
                                               "b", "Coop", "co-op", "COP"};
    EXPECT_EQ(names, expected);
}

TEST(SuffixKey, BeginsWithTheKeyOfEachEndOfTheText) {
    const std::string key = SuffixKey("D:\\Music\\\xC3\x84rger.MP3");
    EXPECT_TRUE(key.starts_with(SuffixKey("\xC3\xA4rger.mp3")));
    EXPECT_TRUE(key.starts_with(SuffixKey("")));
    EXPECT_FALSE(key.starts_with(SuffixKey("arger.mp3")));
}

TEST(MatchesPattern, KnowsThePercentSignAlone) {
    EXPECT_TRUE(MatchesPattern("Abba", "a%B%"));
    EXPECT_TRUE(MatchesPattern("Abba", "%"));
    EXPECT_TRUE(MatchesPattern("", "%"));
    EXPECT_TRUE(MatchesPattern("", ""));
    EXPECT_TRUE(MatchesPattern("abab", "ab%ab"));
    EXPECT_FALSE(MatchesPattern("aba", "ab%ba%"));
    EXPECT_FALSE(MatchesPattern("abc", "a_c"));
    EXPECT_FALSE(MatchesPattern("abc", "a*"));
    EXPECT_TRUE(MatchesPattern("a[1]#?", "A[1]#?"));
    EXPECT_FALSE(MatchesPattern("a1", "a[1]"));
}

TEST(MatchesPattern, TakesALeadingPercentSignAsTheEndOfALiteralText) {
    EXPECT_TRUE(MatchesPattern("D:\\100%\\a.mp3", "%\\100%\\A.mp3"));
    EXPECT_FALSE(MatchesPattern("D:\\100 x\\a.mp3", "%\\100%\\a.mp3"));
    EXPECT_TRUE(MatchesPattern("D:\\100 x\\a.mp3", "%\\100%\\a%"));
}

}  // namespace

}  // namespace jet::engine
