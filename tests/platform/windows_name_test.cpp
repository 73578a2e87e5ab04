#include "platform/windows_name.h"

#include <gtest/gtest.h>
#include <string>

namespace quillon {
namespace {

TEST(IsWindowsName, TakesWhatAWindowsFolderHolds) {
    for (const char* const name :
         {"a", "a.mp3", ".hidden", " blank first", "AC-DC", "Sigur Rós", "日本", "𝄞", "NUL",
          "con.txt", "a;b,c=d", "100%", "it's", "$x", "~1", "...x", "{[()]}"})
        EXPECT_TRUE(IsWindowsName(name)) << name;
}

TEST(IsWindowsName, RefusesWhatItDoesNot) {
    for (const char* const name : {"",
                                   ".",
                                   "..",
                                   "...",
                                   "a.",
                                   "a ",
                                   " ",
                                   "a/b",
                                   "a\\b",
                                   "a:b",
                                   "a*",
                                   "a?",
                                   "a<",
                                   "a>",
                                   "a|",
                                   "a\"b",
                                   "a\nb",
                                   "\x01",
                                   "a\x1F",
                                   "caf\xE9",
                                   "\xED\xA0\x80",
                                   "\xC0\xAE\xC0\xAE"})
        EXPECT_FALSE(IsWindowsName(name)) << name;
    EXPECT_FALSE(IsWindowsName(std::string_view("a\0b", 3)));
}

TEST(IsWindowsName, CountsUtf16Units) {
    std::string name;
    for (int i = 0; i < 255; ++i)
        name += "日";
    EXPECT_TRUE(IsWindowsName(name));
    EXPECT_FALSE(IsWindowsName(name + "x"));
    name.clear();
    for (int i = 0; i < 128; ++i)
        name += "𝄞";
    EXPECT_FALSE(IsWindowsName(name));
}

}  // namespace
}  // namespace quillon
