#include "app/text/display_text.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(DisplayColumns, CountsCharactersAsATerminalShowsThem) {
    EXPECT_EQ(DisplayColumns(""), 0U);
    EXPECT_EQ(DisplayColumns("abc"), 3U);
    EXPECT_EQ(DisplayColumns("Sängerin"), 8U);
    EXPECT_EQ(DisplayColumns("音楽"), 4U) << "wide characters take two columns";
    EXPECT_EQ(DisplayColumns("e\xCC\x81"), 1U) << "a combining accent takes none";
    EXPECT_EQ(DisplayColumns("\xFF\xFE"), 2U) << "bytes that are no UTF-8 take one each";
}

TEST(FitColumns, LeavesATextThatFits) {
    EXPECT_EQ(FitColumns("abc", 3), "abc");
    EXPECT_EQ(FitColumns("", 3), "");
    EXPECT_EQ(FitColumns("音楽", 4), "音楽");
}

TEST(FitColumns, EndsACutTextInAnEllipsis) {
    EXPECT_EQ(FitColumns("abcd", 3), "ab…");
    EXPECT_EQ(FitColumns("abcd", 1), "…");
    EXPECT_EQ(FitColumns("abcd", 0), "");
}

TEST(FitColumns, NeverCutsAWideCharacterInHalf) {
    EXPECT_EQ(FitColumns("音楽館", 4), "音…");
    EXPECT_EQ(FitColumns("音楽館", 5), "音楽…");
}

TEST(FitColumns, IsNeverWiderThanAsked) {
    const std::string text = "a音é楽e\xCC\x81 b館cd";
    for (std::size_t columns = 0; columns < 16; ++columns)
        EXPECT_LE(DisplayColumns(FitColumns(text, columns)), columns);
}

TEST(ShortenMiddle, LeavesATextThatFits) {
    EXPECT_EQ(ShortenMiddle("", 0), "");
    EXPECT_EQ(ShortenMiddle("abc", 3), "abc");
    EXPECT_EQ(ShortenMiddle("音楽", 4), "音楽");
}

TEST(ShortenMiddle, KeepsBothEnds) {
    EXPECT_EQ(ShortenMiddle("abcdefgh", 7), "abc…fgh");
    EXPECT_EQ(ShortenMiddle("abcdefgh", 6), "abc…gh");
    EXPECT_EQ(ShortenMiddle("abcdefgh", 2), "a…");
    EXPECT_EQ(ShortenMiddle("abcdefgh", 1), "…");
    EXPECT_EQ(ShortenMiddle("abcdefgh", 0), "");
}

TEST(ShortenMiddle, NeverDividesAWideCharacter) {
    EXPECT_EQ(ShortenMiddle("音楽館音楽館", 9), "音楽…楽館");
    EXPECT_EQ(ShortenMiddle("音楽館音楽館", 7), "音楽…館");
    EXPECT_EQ(ShortenMiddle("音楽館音楽館", 6), "音…館");
    EXPECT_EQ(ShortenMiddle("abcdef音", 4), "abc…") << "what the end cannot use the beginning gets";
}

TEST(ShortenMiddle, NeverTakesAnAccentFromItsLetter) {
    const std::string accented = "e\xCC\x81";
    EXPECT_EQ(ShortenMiddle("ab" + accented + "cdefg" + accented + "hi", 7),
              "ab" + accented + "…" + accented + "hi");
    EXPECT_EQ(ShortenMiddle("abcdefg" + accented, 3), "a…" + accented);
}

TEST(ShortenMiddle, NeverTakesAnEmojiApart) {
    const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";
    const std::string shortened = ShortenMiddle("abcdefgh" + family, 8);
    EXPECT_EQ(shortened.find(family) == std::string::npos,
              shortened.find("\U0001F467") == std::string::npos);
}

TEST(ShortenMiddle, IsNeverWiderThanAsked) {
    const std::string text =
        "a音é楽e\xCC\x81 b館c\xFF"
        "d音";
    for (std::size_t columns = 0; columns < 20; ++columns)
        EXPECT_LE(DisplayColumns(ShortenMiddle(text, columns)), columns);
}

TEST(OneLine, TakesControlCharactersOut) {
    EXPECT_EQ(OneLine("a\r\nb\tc"), "a  b c");
    EXPECT_EQ(OneLine("\x1B[2J"), " [2J") << "no escape sequence reaches the terminal";
    EXPECT_EQ(OneLine("\xC2\x9B"), " ") << "nor one of the eight-bit kind";
    EXPECT_EQ(OneLine("a\xE2\x80\xA8z"), "a z") << "nor a line separator";
    EXPECT_EQ(OneLine("Fröhlich – 音楽"), "Fröhlich – 音楽");
}

TEST(OneLine, MarksBytesThatAreNoUtf8) {
    EXPECT_EQ(OneLine("a\xFFz"), "a\xEF\xBF\xBDz");
}

TEST(WrapWords, BreaksAtBlanksAndKeepsLongWordsWhole) {
    EXPECT_EQ(WrapWords("a run that removes", 8),
              (std::vector<std::string>{"a run", "that", "removes"}));
    EXPECT_EQ(WrapWords("see /srv/music/of/all now", 6),
              (std::vector<std::string>{"see", "/srv/music/of/all", "now"}));
    EXPECT_EQ(WrapWords("eight ä", 7), (std::vector<std::string>{"eight ä"}));
    EXPECT_EQ(WrapWords("", 7), std::vector<std::string>());
}

TEST(DurationText, ShowsTenthsOfASecondBelowOne) {
    using std::chrono::milliseconds;
    EXPECT_EQ(DurationText(milliseconds(0)), "0.01 s");
    EXPECT_EQ(DurationText(milliseconds(25)), "0.02 s");
    EXPECT_EQ(DurationText(milliseconds(99)), "0.09 s");
    EXPECT_EQ(DurationText(milliseconds(100)), "0.1 s");
    EXPECT_EQ(DurationText(milliseconds(999)), "0.9 s");
    EXPECT_EQ(DurationText(milliseconds(1999)), "0:00:01");
}

TEST(ElapsedText, ShowsHoursMinutesAndSeconds) {
    EXPECT_EQ(ElapsedText(std::chrono::seconds(0)), "0:00:00");
    EXPECT_EQ(ElapsedText(std::chrono::seconds(12)), "0:00:12");
    EXPECT_EQ(ElapsedText(std::chrono::seconds(3 * 3600 + 25 * 60 + 45)), "3:25:45");
    EXPECT_EQ(ElapsedText(std::chrono::hours(100)), "100:00:00");
}

}  // namespace
}  // namespace quillon
