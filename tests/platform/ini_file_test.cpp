#include "platform/portable/ini_file.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(IniFile, FindsKeysWithoutLetterCase) {
    const IniFile file = IniFile::Parse("[NPFrame]\r\nLibraryRoot=D:\\Music\r\nÄrger=1\r\n");
    EXPECT_EQ(file.Find("npframe", "LIBRARYROOT"), "D:\\Music");
    EXPECT_EQ(file.Find("NPFRAME", "ärger"), "1");
    EXPECT_EQ(file.Find("NPFrame", "Missing"), std::nullopt);
    EXPECT_EQ(file.Find("Other", "LibraryRoot"), std::nullopt);
}

TEST(IniFile, TakesBlanksAndOnePairOfQuotesOff) {
    const IniFile file = IniFile::Parse(
        "  [ A ]  \n k1 = v 1 \t\nk2=\" kept \"\nk3='x'\nk4=\"\"y\"\"\nk5=\"open\nk6=\"\nk7=\nk8= "
        "''");
    EXPECT_EQ(file.Find("A", "k1"), "v 1");
    EXPECT_EQ(file.Find("A", "k2"), " kept ");
    EXPECT_EQ(file.Find("A", "k3"), "x");
    EXPECT_EQ(file.Find("A", "k4"), "\"y\"");
    EXPECT_EQ(file.Find("A", "k5"), "\"open");
    EXPECT_EQ(file.Find("A", "k6"), "\"");
    EXPECT_EQ(file.Find("A", "k7"), "");
    EXPECT_EQ(file.Find("A", "k8"), "");
}

TEST(IniFile, FirstOccurrenceWins) {
    const IniFile file = IniFile::Parse("[a]\nx=1\nX=2\n[b]\ny=1\n[A]\nx=3\nz=4\n");
    EXPECT_EQ(file.Find("a", "x"), "1");
    EXPECT_EQ(file.Find("a", "z"), std::nullopt);
    EXPECT_EQ(file.Find("b", "y"), "1");
}

TEST(IniFile, KeepsEverythingBehindTheFirstEqualsSign) {
    const IniFile file = IniFile::Parse("[a]\nurl=http://h/?a=b;c\n");
    EXPECT_EQ(file.Find("a", "url"), "http://h/?a=b;c");
}

TEST(IniFile, PassesOverLinesThatMeanNothing) {
    const IniFile file =
        IniFile::Parse("early=1\n; x=2\n[a]\n;x=3\n ; x=4\nno sign\n\n=empty\nx=5\n[open\ny=6");
    EXPECT_EQ(file.Find("a", "x"), "5");
    EXPECT_EQ(file.Find("", "early"), std::nullopt);
    EXPECT_EQ(file.Find("open", "y"), "6");
    EXPECT_TRUE(IniFile::Parse("").Entries("a").empty());
}

TEST(IniFile, ListsEntriesAsWritten) {
    const IniFile file = IniFile::Parse("[Plugins]\nQuillon=1\nOther = 0\nquillon=0\n");
    EXPECT_EQ(file.Entries("plugins"),
              (std::vector<IniFile::Entry>{{"Quillon", "1"}, {"Other", "0"}}));
    EXPECT_TRUE(file.Entries("Drives").empty());
}

TEST(IniFile, ReadsEveryCoding) {
    EXPECT_EQ(IniFile::Parse("[a]\nx=caf\xE9 \x80").Find("a", "x"), "café €");
    EXPECT_EQ(IniFile::Parse("[a]\nx=café").Find("a", "x"), "café");
    EXPECT_EQ(IniFile::Parse("\xEF\xBB\xBF[a]\nx=日本").Find("a", "x"), "日本");
    EXPECT_EQ(IniFile::Parse("\xEF\xBB\xBF[a]\nx=caf\xE9").Find("a", "x"), "café");
    const std::u16string wide = u"\uFEFF[a]\r\nx=日𝄞\r\n";
    std::string bytes;
    for (const char16_t unit : wide) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    EXPECT_EQ(IniFile::Parse(bytes).Find("a", "x"), "日𝄞");
    EXPECT_EQ(IniFile::Parse(bytes + "z").Find("a", "x"), "日𝄞");
}

TEST(IniFile, HalfASurrogatePairBecomesTheReplacementCharacter) {
    const char bytes[] = "\xFF\xFE[\0a\0]\0\n\0x\0=\0\x34\xD8";
    EXPECT_EQ(IniFile::Parse(std::string_view(bytes, sizeof bytes - 1)).Find("a", "x"), "\uFFFD");
}

TEST(IniFile, GivesTheLinesOfASectionWhateverTheyMean) {
    const IniFile file =
        IniFile::Parse("x=0\n[A]\na = 1\n; c=1\n\n no entry \na=2\n[B]\nb=1\n[a]\nd=1\n");
    EXPECT_EQ(file.Lines("A"), (std::vector<std::string>{"a = 1", "no entry", "a=2", "d=1"}));
    EXPECT_EQ(file.Lines("none"), std::vector<std::string>{});
    EXPECT_EQ(file.Entries("A").size(), 1U);
}

}  // namespace
}  // namespace quillon
