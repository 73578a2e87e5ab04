#include "app/serve/templates.h"

#include <gtest/gtest.h>
#include <stdexcept>

#include "app/serve/html.h"

namespace quillon {
namespace {

TEST(EscapeHtml, LeavesNothingThatAPageCouldTakeForMarkup) {
    EXPECT_EQ(EscapeHtml("Rock & Roll"), "Rock &#38; Roll");
    EXPECT_EQ(EscapeHtml("<script>\"'"), "&#60;script&#62;&#34;&#39;");
    EXPECT_EQ(EscapeHtml("&amp;"), "&#38;amp;");
}

TEST(EscapeHtml, IsPlainAscii) {
    EXPECT_EQ(EscapeHtml("Bjørk 日"), "Bj&#248;rk &#26085;");
    EXPECT_EQ(EscapeHtml("\xF8"), "&#248;") << "a stray byte is ANSI";
    EXPECT_EQ(EscapeHtml("a\r\nb\x7F\tc"), "a  b  c");
    EXPECT_EQ(EscapeHtml(std::string_view("a\0b", 3)), "a b");
    EXPECT_EQ(EscapeHtml(""), "");
}

TEST(FillTemplate, FillsTextAndMarkup) {
    EXPECT_EQ(FillTemplate("player_value.html", {{"name", "a<b"}, {"value", "{{name}}"}}),
              "<code>a&#60;b={{name}}</code>\n");
    EXPECT_EQ(FillTemplate("player_list.html", {{"rows", "<tr>"}}).find("&#60;"),
              std::string::npos);
}

TEST(FillTemplate, RefusesWhatDoesNotFit) {
    EXPECT_THROW(FillTemplate("nowhere.html"), std::out_of_range);
    EXPECT_THROW(FillTemplate("player_value.html", {{"name", "a"}}), std::out_of_range);
}

}  // namespace
}  // namespace quillon
