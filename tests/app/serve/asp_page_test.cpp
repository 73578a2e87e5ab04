#include "app/serve/asp_page.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

AspServices Services(const std::string& user = "") {
    return {.authUser = user,
            .include = [](std::string_view path) -> std::optional<std::string> {
                if (path == "/includes/style.asp") return "(style)";
                if (path == "/includes/header.asp") return "(header<% Secret() %>)";
                return std::nullopt;
            },
            .customHeader = [](std::string_view title) { return "(" + std::string(title) + ")"; },
            .customFooter = [] { return std::string("(footer)"); },
            .notRun = "(not run)"};
}

std::string Html(std::string_view page) {
    return EvaluateAsp(page, Services()).html;
}

/// A page as the tool begins and ends it.
const std::string PickerPage =
    "<!--#include virtual=\"/includes/style.asp\"-->\r\n"
    "<!--#include virtual=\"/includes/header.asp\"-->\r\n"
    "<%\r\n"
    "If Request.ServerVariables(\"AUTH_USER\") = \"guest\" Then "
    "Response.Redirect(\"/unauthorized.asp\")\r\n"
    "Response.Write CustomHeader(\"Album Picker Page 1\")\r\n"
    "%>\r\n"
    "<br><br>\r\n"
    "music"
    "\r\n<%Response.Write CustomFooter()%>";

TEST(AspPage, EvaluatesAPickerPage) {
    const AspAnswer answer = EvaluateAsp(PickerPage, Services());
    EXPECT_EQ(answer.html,
              "(style)\r\n(header)\r\n(Album Picker Page 1)\r\n<br><br>\r\nmusic\r\n(footer)");
    EXPECT_FALSE(answer.redirect.has_value());
}

TEST(AspPage, SendsAGuestAway) {
    EXPECT_EQ(EvaluateAsp(PickerPage, Services("guest")).redirect, "/unauthorized.asp");
    EXPECT_FALSE(EvaluateAsp(PickerPage, Services("Guest")).redirect.has_value());
    EXPECT_FALSE(EvaluateAsp(PickerPage, Services("admin")).redirect.has_value());
}

TEST(AspPage, NothingBehindARedirectCounts) {
    const std::string test = PickerPage.substr(PickerPage.find("<%"));
    EXPECT_EQ(EvaluateAsp(test + "<% Unknown() %>", Services("guest")).redirect,
              "/unauthorized.asp");
}

TEST(AspPage, TitlesMayHoldAnything) {
    EXPECT_EQ(Html("<%Response.Write CustomHeader(\"a \"\"b\"\" (c)\")%>"), "(a \"b\" (c))");
    EXPECT_EQ(Html("<%Response.Write CustomHeader(\"\")%>"), "()");
}

TEST(AspPage, OtherCodeIsNeverRun) {
    for (const char* const page :
         {"<%= Now %>", "<%%>x<%@ Language=VBScript %>", "<% Response.Write Now %>",
          "<%Response.Write CustomHeader(\"a\" & \"b\")%>", "<%Response.Write CustomHeader(\"a)%>",
          "<%Response.Write CustomHeader(\"a\"\"b)%>", "<%Response.Write CustomHeader(x)%>",
          "<%Response.Write CustomFooter() : Kill \"x\"%>", "<%Response.Redirect(\"/x\")%>",
          "<%If Request.ServerVariables(\"AUTH_USER\") = \"root\" Then "
          "Response.Redirect(\"/unauthorized.asp\")%>",
          "<!--#include virtual=\"/includes/other.asp\"-->",
          "<!--#include virtual=\"/includes/../includes/style.asp\"-->",
          "<!--#include file=\"style.asp\"-->", "<!--#include-->"}) {
        const std::string html = Html(page);
        EXPECT_TRUE(html.ends_with("(not run)")) << page << " -> " << html;
        EXPECT_EQ(html.find("Response"), std::string::npos) << html;
    }
}

TEST(AspPage, ABlockWithOneUnknownStatementIsLeftOutWhole) {
    EXPECT_EQ(Html("a<%\nIf False Then\nResponse.Write CustomFooter()\nEnd If\n%>b"),
              "a(not run)b");
    const std::string guest = "<%\n" + PickerPage.substr(PickerPage.find("If Request")) + "";
    const std::string block = guest.substr(0, guest.find("%>")) + "Unknown\n%>";
    const AspAnswer answer = EvaluateAsp(block, Services("guest"));
    EXPECT_FALSE(answer.redirect.has_value());
    EXPECT_EQ(answer.html, "(not run)");
}

TEST(AspPage, CodeThatIsNotClosedReachesToTheEnd) {
    EXPECT_EQ(Html("a<% Unknown\n text"), "a(not run)");
    EXPECT_EQ(Html("a<%Response.Write CustomFooter()"), "a(footer)");
    EXPECT_EQ(Html("a<!--#include virtual=\"/includes/style.asp\""), "a(style)");
    EXPECT_EQ(Html("a<%"), "a");
}

TEST(AspPage, MarkupPassesThroughAsItIs) {
    const std::string html = "<p title='%>'>5 % of <b>all</b> \xE9 &lt;% x %&gt;<!-- note --></p>";
    EXPECT_EQ(Html(html), html);
    EXPECT_EQ(Html(""), "");
}

TEST(AspPage, CallsInWhatCallsGiveAreNotRun) {
    AspServices services = Services();
    services.customFooter = [] { return std::string("<%Response.Write CustomFooter()%>"); };
    EXPECT_EQ(EvaluateAsp("<%Response.Write CustomFooter()%>", services).html,
              "<%Response.Write CustomFooter()%>");
}

}  // namespace
}  // namespace quillon
