#include "run/library_lists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fake_files.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LibraryListsTest : public ::testing::Test {
  protected:
    std::vector<std::string> LinesOf(const std::string& bytes) {
        files.AddFile(R"(D:\Music\folders.txt)", bytes);
        return ListedLibraryFolders(files, R"(D:\Music)");
    }

    /// ASCII text in units of two bytes, behind the mark that tells their order.
    static std::string Utf16(std::string_view text, bool lowFirst) {
        std::string bytes = lowFirst ? "\xFF\xFE" : "\xFE\xFF";
        for (const char character : text) {
            if (lowFirst) bytes += {character, '\0'};
            if (!lowFirst) bytes += {'\0', character};
        }
        return bytes;
    }

    fakes::Calls calls;
    fakes::FakeFiles files{calls};
};

TEST_F(LibraryListsTest, AreReadLineByLineWhateverEndsTheLines) {
    EXPECT_THAT(LinesOf("D:\\One\r\nD:\\Two\nD:\\Three\rD:\\Four"),
                ElementsAre(R"(D:\One)", R"(D:\Two)", R"(D:\Three)", R"(D:\Four)"));
    EXPECT_THAT(LinesOf("\r\n  D:\\One  \r\n\r\n   \r\n"), ElementsAre(R"(D:\One)"));
    EXPECT_THAT(LinesOf(""), IsEmpty());
}

TEST_F(LibraryListsTest, AreReadInAnsi) {
    EXPECT_THAT(LinesOf("D:\\Bj\xF6rk"), ElementsAre("D:\\Björk"));
}

TEST_F(LibraryListsTest, AreReadInUtf8WithAndWithoutTheMark) {
    EXPECT_THAT(LinesOf("D:\\Björk\r\nD:\\音楽"), ElementsAre("D:\\Björk", "D:\\音楽"));
    EXPECT_THAT(LinesOf("\xEF\xBB\xBF"
                        "D:\\Björk\r\nD:\\Two"),
                ElementsAre("D:\\Björk", R"(D:\Two)"));
}

TEST_F(LibraryListsTest, AreReadInUtf16OfBothOrders) {
    for (const bool lowFirst : {true, false}) {
        EXPECT_THAT(LinesOf(Utf16("D:\\One\r\nD:\\Two\r\n", lowFirst)),
                    ElementsAre(R"(D:\One)", R"(D:\Two)"));
    }
}

TEST_F(LibraryListsTest, AreTheFilesWithTxtAnywhereInTheirNames) {
    files.AddFile(R"(D:\Music\a.TXT.bak)", "D:\\One");
    files.AddFile(R"(D:\Music\b.text)", "D:\\Two");
    files.AddFile(R"(D:\Music\Artist\c.txt)", "D:\\Three");
    EXPECT_THAT(ListedLibraryFolders(files, R"(D:\Music)"), ElementsAre(R"(D:\One)"));
}

TEST_F(LibraryListsTest, FailWhereOneCannotBeRead) {
    files.AddFile(R"(D:\Music\a.txt)", "D:\\One");
    files.AddFile(R"(D:\Music\b.txt)", "D:\\Two");
    calls.Refuse(R"(OpenBinary D:\Music\b.txt)", FailureNumber::PermissionDenied, "b.txt");
    EXPECT_THROW(ListedLibraryFolders(files, R"(D:\Music)"), Failure);
}

TEST_F(LibraryListsTest, FailWhereOneCannotBeLookedAt) {
    files.AddFile(R"(D:\Music\a.txt)", "D:\\One");
    files.HideFromView(R"(D:\Music\b.txt)");
    EXPECT_THROW(ListedLibraryFolders(files, R"(D:\Music)"), Failure);
}

TEST_F(LibraryListsTest, AreNotAskedForWhatElseCannotBeLookedAt) {
    files.AddFile(R"(D:\Music\a.txt)", "D:\\One");
    files.HideFromView(R"(D:\Music\Artist)");
    EXPECT_THAT(ListedLibraryFolders(files, R"(D:\Music)"), ElementsAre(R"(D:\One)"));
}

TEST_F(LibraryListsTest, FailWhereOneIsTooLargeToBeAList) {
    EXPECT_THROW(LinesOf(std::string((std::size_t{1} << 20U) + 1, 'x')), Failure);
}

}  // namespace
}  // namespace quillon
