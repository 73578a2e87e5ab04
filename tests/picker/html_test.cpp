#include "picker/html.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(HtmlText, LeavesPlainTextAlone) {
    EXPECT_EQ(HtmlText("First Light (Live), Vol. 2"), "First Light (Live), Vol. 2");
    EXPECT_EQ(HtmlText(""), "");
}

TEST(HtmlText, RefersToWhateverHasAMeaningInAPage) {
    EXPECT_EQ(HtmlText("<b>&\"'`"), "&#60;b&#62;&#38;&#34;&#39;&#96;");
    EXPECT_EQ(HtmlText("&lt;"), "&#38;lt;");
}

TEST(HtmlText, CannotBeginServerCode) {
    EXPECT_EQ(HtmlText("<%Response.End%>"), "&#60;%Response.End%&#62;");
    EXPECT_EQ(HtmlText("<!--#include file=\"x\"-->"), "&#60;!--#include file=&#34;x&#34;--&#62;");
}

TEST(HtmlText, IsAsciiWhateverTheLetters) {
    EXPECT_EQ(HtmlText("Ána"), "&#193;na");
    EXPECT_EQ(HtmlText("שיר"), "&#1513;&#1497;&#1512;");
    EXPECT_EQ(HtmlText("\xF0\x9F\x8E\xB5"), "&#127925;");
}

TEST(HtmlText, HasNoCharactersThatABrowserRefuses) {
    EXPECT_EQ(HtmlText("a\tb\r\nc"), "a b  c");
    EXPECT_EQ(HtmlText(std::string_view("\0\x7F", 2)), "  ");
    EXPECT_EQ(HtmlText("\xC2\x81"), " ");
    EXPECT_EQ(HtmlText("\xEF\xBF\xBF"), "&#65533;");
    EXPECT_EQ(HtmlText("\xEF\xB7\x90"), "&#65533;");
}

TEST(HtmlText, ShowsThatBytesWereNoText) {
    EXPECT_EQ(HtmlText("a\xFFz"), "a&#65533;z");
    EXPECT_EQ(HtmlText("\xED\xA0\x80"), "&#65533;");
}

TEST(UrlPath, KeepsSlashesAndUnreservedCharacters) {
    EXPECT_EQ(UrlPath("/Quillon/albumcovers/A-b_c.~1.jpg"), "/Quillon/albumcovers/A-b_c.~1.jpg");
}

TEST(UrlPath, NeedsNoQuotesAsAnAttributeValue) {
    EXPECT_EQ(UrlPath("a b'c\"d>e=f`g"), "a%20b%27c%22d%3Ee%3Df%60g");
    EXPECT_EQ(UrlPath("100%.jpg?x#y&z"), "100%25.jpg%3Fx%23y%26z");
}

TEST(UrlPath, EncodesTheBytesOfOtherLetters) {
    EXPECT_EQ(UrlPath("ñ.jpg"), "%C3%B1.jpg");
}

TEST(UrlValue, EncodesSlashesToo) {
    EXPECT_EQ(UrlValue("a/b&c=d"), "a%2Fb%26c%3Dd");
}

TEST(PageHead, CallsTheHostsStyleAndHeaderAndTurnsGuestsAway) {
    EXPECT_EQ(PageHead("Album Picker Page 7"),
              "<!--#include virtual=\"/includes/style.asp\"-->\r\n"
              "<!--#include virtual=\"/includes/header.asp\"-->\r\n"
              "<%\r\n"
              "If Request.ServerVariables(\"AUTH_USER\") = \"guest\" "
              "Then Response.Redirect(\"/unauthorized.asp\")\r\n"
              "Response.Write CustomHeader(\"Album Picker Page 7\")\r\n"
              "%>\r\n"
              "<br><br>\r\n");
}

TEST(PageFoot, CallsTheHostsFooter) {
    EXPECT_EQ(PageFoot(), "\r\n<%Response.Write CustomFooter()%>");
}

}  // namespace
}  // namespace quillon
