#include "platform/windows_path.h"

#include <gtest/gtest.h>

#include "tests/platform/failure_of.h"

namespace quillon {
namespace {

TEST(ParseWindowsPath, TakesDriveAndShareApart) {
    const WindowsPath file = ParseWindowsPath("D:\\Music\\a b\\x.mp3");
    EXPECT_EQ(file.root, "D:");
    EXPECT_EQ(file.rest, "Music/a b/x.mp3");
    const WindowsPath share = ParseWindowsPath("\\\\nas\\music\\x.mp3");
    EXPECT_EQ(share.root, "\\\\nas\\music");
    EXPECT_EQ(share.rest, "x.mp3");
    for (const char* const text : {"D:", "D:\\", "D:/", "D:\\\\"}) {
        EXPECT_EQ(ParseWindowsPath(text).root, "D:") << text;
        EXPECT_EQ(ParseWindowsPath(text).rest, "") << text;
    }
}

TEST(ParseWindowsPath, SpellsAPathInOneWay) {
    EXPECT_EQ(ParseWindowsPath("d:/Music//x\\").Text(), "d:\\Music\\x");
    EXPECT_EQ(ParseWindowsPath("//nas//music//x").Text(), "\\\\nas\\music\\x");
    EXPECT_EQ(ParseWindowsPath("D:").Text(), "D:\\");
    EXPECT_EQ(ParseWindowsPath("\\\\nas\\music").Text(), "\\\\nas\\music\\");
    EXPECT_EQ(ParseWindowsPath("D:\\").Child("x"), "D:\\x");
    EXPECT_EQ(ParseWindowsPath("D:\\a\\").Child("x"), "D:\\a\\x");
}

TEST(ParseWindowsPath, NeedsARoot) {
    for (const char* const text :
         {"", "x.mp3", "Music\\x.mp3", "\\Music", "D", "D:x", "\\\\nas", "\\\\", "\\\\nas\\",
          "1:\\x", "DD:\\x", "/srv/music", "\xC3\xA9:\\x"})
        EXPECT_EQ(FailureOf([&] { ParseWindowsPath(text); }),
                  "Path not found" + (*text == '\0' ? "" : std::string(": ") + text))
            << text;
}

TEST(ParseWindowsPath, RefusesComponentsThatWindowsCannotHold) {
    for (const char* const text :
         {"D:\\..\\etc", "D:\\a\\..\\..\\b", "D:\\.\\x", "D:\\a.\\x", "D:\\a \\x", "D:\\x:stream",
          "D:\\a*b", "\\\\?\\D:\\x", "\\\\.\\pipe\\x", "\\\\..\\x\\y", "\\\\nas\\..\\y", "D:/../x"})
        EXPECT_EQ(FailureOf([&] { ParseWindowsPath(text); }),
                  "Bad file name or number: " + std::string(text));
    EXPECT_EQ(FailureOf([] { ParseWindowsPath("D:\\caf\xE9"); }),
              "Bad file name or number: D:\\café");
}

TEST(ParseRoot, TakesDrivesAndSharesAlone) {
    EXPECT_EQ(ParseRoot("D"), "D:");
    EXPECT_EQ(ParseRoot("d:"), "d:");
    EXPECT_EQ(ParseRoot("D:\\"), "D:");
    EXPECT_EQ(ParseRoot("\\\\nas\\music"), "\\\\nas\\music");
    EXPECT_EQ(ParseRoot("//nas/music/"), "\\\\nas\\music");
    for (const char* const text : {"", "1", "DD", "D:\\x", "\\\\nas", "\\\\nas\\music\\x", "music"})
        EXPECT_EQ(ParseRoot(text), std::nullopt) << text;
}

TEST(ParentFolder, IsWhatThePathLiesIn) {
    EXPECT_EQ(ParentFolder(R"(D:\Music\x.mp3)"), R"(D:\Music)");
    EXPECT_EQ(ParentFolder(R"(D:\x.mp3)"), "D:");
    EXPECT_EQ(ParentFolder("x.mp3"), "");
}

}  // namespace
}  // namespace quillon
