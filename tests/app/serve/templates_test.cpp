#include "app/serve/templates.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace quillon {
namespace {

std::string Filled(std::string_view value) {
    return FillTemplate("player_problem.html", {{"problem", value}});
}

TEST(FillTemplate, LeavesNothingThatAPageCouldTakeForMarkup) {
    EXPECT_NE(Filled("Rock & Roll").find("Rock &#38; Roll"), std::string::npos);
    EXPECT_NE(Filled("<script>\"'").find("&#60;script&#62;&#34;&#39;"), std::string::npos);
    EXPECT_NE(Filled("&amp;").find("&#38;amp;"), std::string::npos);
}

TEST(FillTemplate, ReadsTheSameInAnyEncoding) {
    EXPECT_NE(Filled("Bj\u00F8rk").find("Bj&#248;rk"), std::string::npos);
    EXPECT_NE(Filled("Bj\xF8rk").find("Bj&#248;rk"), std::string::npos) << "a stray byte is ANSI";
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
