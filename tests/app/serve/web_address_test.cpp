#include "app/serve/web_address.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

using PathNames = std::vector<std::string>;

std::optional<PathNames> PathOf(std::string_view target) {
    const auto address = ParseWebAddress(target);
    return address ? std::optional(address->names) : std::nullopt;
}

TEST(WebAddress, TakesAPathApart) {
    EXPECT_EQ(PathOf("/"), PathNames{});
    EXPECT_EQ(PathOf("/a.asp"), PathNames{"a.asp"});
    EXPECT_EQ(PathOf("/Quillon/AlbumPicker/AlbumPicker0.asp?x=/../"),
              (PathNames{"Quillon", "AlbumPicker", "AlbumPicker0.asp"}));
}

TEST(WebAddress, DecodesEscapesOnce) {
    EXPECT_EQ(PathOf("/a%20b/%63.jpg"), (PathNames{"a b", "c.jpg"}));
    EXPECT_EQ(PathOf("/100%25.jpg"), PathNames{"100%.jpg"});
    EXPECT_EQ(PathOf("/%252e%252e"), PathNames{"%2e%2e"});
    EXPECT_EQ(PathOf("/a+b"), PathNames{"a+b"}) << "a blank in queries alone";
}

TEST(WebAddress, ReadsNamesInUtf8OrAnsi) {
    EXPECT_EQ(PathOf("/%C3%A9.jpg"), PathNames{"é.jpg"});
    EXPECT_EQ(PathOf("/%E9.jpg"), PathNames{"é.jpg"});
    EXPECT_EQ(PathOf("/\xC3\xA9.jpg"), PathNames{"é.jpg"});
}

TEST(WebAddress, RefusesWhatCouldLeadOutOfAFolder) {
    for (const char* const target : {"/..",
                                     "/../x",
                                     "/a/../../x",
                                     "/%2e%2e/x",
                                     "/%2E./x",
                                     "/.%2e/x",
                                     "/..%2fx",
                                     "/..%5cx",
                                     "/a%2f..%2f..%2fx",
                                     "/a\\..\\x",
                                     "/.",
                                     "/./x",
                                     "/a/./x",
                                     "//",
                                     "//etc/passwd",
                                     "/a//b",
                                     "/a/",
                                     "/C:/x",
                                     "/C%3A%5Cx",
                                     "/x.asp::$DATA",
                                     "/x%00.jpg",
                                     "/%00",
                                     "/x%0d%0aY:z",
                                     "/x.asp.",
                                     "/x.asp%20",
                                     "/%5c%5cserver%5cshare%5cx",
                                     "/~?/..",
                                     "/.git/config",
                                     "/a/.hidden",
                                     "/*",
                                     "",
                                     "*",
                                     "x",
                                     "http://localhost/",
                                     "../x",
                                     "/%",
                                     "/%4",
                                     "/%zz",
                                     "/%u002e"}) {
        const bool hasQuestionMark = std::string_view(target) == "/~?/..";
        EXPECT_EQ(PathOf(target).has_value(), hasQuestionMark) << target;
    }
}

TEST(WebAddress, RefusesOverLongNames) {
    EXPECT_TRUE(PathOf("/" + std::string(255, 'a')).has_value());
    EXPECT_FALSE(PathOf("/" + std::string(256, 'a')).has_value());
}

TEST(QueryValues, NamesCountWithoutLetterCase) {
    const QueryValues query("Frame=Picker&clientaction=add&CDJID=12&ref=0");
    EXPECT_EQ(query.Get("ClientAction"), "add");
    EXPECT_EQ(query.Get("cdjid"), "12");
    EXPECT_TRUE(query.Has("REF"));
    EXPECT_FALSE(query.Has("save"));
    EXPECT_EQ(query.Get("save"), "");
}

TEST(QueryValues, DecodesValues) {
    const QueryValues query("a=x+y%26z%3D&b=%C3%A9&c=%E9&d=100%&e&=f&&g=1=2&h=%2B");
    EXPECT_EQ(query.Get("a"), "x y&z=");
    EXPECT_EQ(query.Get("b"), "é");
    EXPECT_EQ(query.Get("c"), "é") << "as a form of an ANSI page sends it";
    EXPECT_EQ(query.Get("d"), "100%");
    EXPECT_TRUE(query.Has("e"));
    EXPECT_EQ(query.Get("g"), "1=2");
    EXPECT_EQ(query.Get("h"), "+");
}

TEST(QueryValues, JoinsValuesOfOneName) {
    EXPECT_EQ(QueryValues("a=1&b=2&A=3").Get("a"), "1, 3");
}

TEST(LoopbackHost, IsThisComputerUnderItsOwnNamesAlone) {
    for (const char* const host :
         {"localhost", "LOCALHOST:8777", "127.0.0.1", "127.0.0.1:80", "[::1]", "[::1]:8777"})
        EXPECT_TRUE(IsLoopbackHost(host)) << host;
    for (const char* const host :
         {"", "evil.example", "localhost.evil.example", "localhost:", "localhost:80x",
          "127.0.0.1.x", "127.0.0.2", "0.0.0.0", "::1", "localhost@evil.example",
          "evil.example:localhost", "localhost, evil.example", " localhost", "xlocalhost"})
        EXPECT_FALSE(IsLoopbackHost(host)) << host;
}

}  // namespace
}  // namespace quillon
