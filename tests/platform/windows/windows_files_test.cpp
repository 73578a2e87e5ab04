#include <algorithm>
#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "platform/portable/folder_stream.h"
#include "platform/portable/system_failure.h"
#include "platform/portable/temporary_entry.h"
#include "platform/windows/system_error.h"
#include "platform/windows/wide_text.h"
#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

TEST(WideText, GoesThereAndBack) {
    const std::string text = "caf\u00e9 \u65e5\u672c \U0001F3B5";
    EXPECT_EQ(NarrowText(WideText(text)), text);
    EXPECT_EQ(WideText("\U0001F3B5"), (std::wstring{0xD83C, 0xDFB5}));
}

TEST(WideText, HalvesOfPairsComeThrough) {
    const std::wstring broken{L'a', 0xD83C, L'b'};
    const std::string text = NarrowText(broken);
    EXPECT_EQ(text,
              "a\xED\xA0\xBC"
              "b");
    EXPECT_EQ(WideText(text), broken);
    EXPECT_EQ(WideText("a\xE9"), (std::wstring{L'a', 0xFFFD}));
}

TEST(WidePath, IsMarkedAndHasBackslashes) {
    EXPECT_EQ(WidePath("D:/Music/x.mp3"), LR"(\\?\D:\Music\x.mp3)");
    EXPECT_EQ(WidePath(R"(D:\Music\.\a\..\x.mp3)"), LR"(\\?\D:\Music\x.mp3)");
    EXPECT_EQ(WidePath("D:"), LR"(\\?\D:\)");
    EXPECT_EQ(WidePath("D:/"), LR"(\\?\D:\)");
    EXPECT_EQ(WidePath("//server/share/x"), LR"(\\?\UNC\server\share\x)");
    EXPECT_EQ(WidePath(R"(\\?\D:\x)"), LR"(\\?\D:\x)");
    EXPECT_EQ(WidePath("D:/Music/NUL.mp3"), LR"(\\?\D:\Music\NUL.mp3)");
    EXPECT_EQ(LocalPathOf(LR"(\\?\D:\Music\x.mp3)"), "D:/Music/x.mp3");
    EXPECT_EQ(LocalPathOf(LR"(\\?\UNC\server\share\x)"), "//server/share/x");
}

TEST(SystemErrors, HaveTheWordingOfTheRuntime) {
    const auto text = [](DWORD code) {
        return std::string(SystemFailure(ErrnoOf(code), "D:\\x").what());
    };
    EXPECT_EQ(text(ERROR_SHARING_VIOLATION), "Permission denied: D:\\x");
    EXPECT_EQ(text(ERROR_LOCK_VIOLATION), "Permission denied: D:\\x");
    EXPECT_EQ(text(ERROR_ACCESS_DENIED), "Permission denied: D:\\x");
    EXPECT_EQ(text(ERROR_WRITE_PROTECT), "Permission denied: D:\\x");
    EXPECT_EQ(text(ERROR_PATH_NOT_FOUND), "Path not found: D:\\x");
    EXPECT_EQ(text(ERROR_BAD_NET_NAME), "Path not found: D:\\x");
    EXPECT_EQ(text(ERROR_DISK_FULL), "Disk full: D:\\x");
    EXPECT_EQ(text(ERROR_ALREADY_EXISTS), "File already exists: D:\\x");
    EXPECT_EQ(text(ERROR_INVALID_NAME), "Bad file name or number: D:\\x");
    EXPECT_THAT(text(ERROR_BAD_NETPATH), testing::StartsWith("Path/File access error: D:\\x ("));
}

TEST(PathText, IsTheSameThereAndBack) {
    const std::string text = "D:\\caf\u00e9\\\u65e5\u672c \U0001F3B5";
    EXPECT_EQ(std::filesystem::path(text).string(), text);
    EXPECT_EQ(std::filesystem::path(text).native(), WideText(text));
    EXPECT_EQ((std::filesystem::path("D:\\") / "\u00d6l").string(), "D:\\\u00d6l");
}

class WindowsFilesTest : public FilesTest {
  protected:
    /// Opens a file as another program does that shares it with nobody, or with those that read.
    HANDLE OpenElsewhere(std::string_view name, DWORD sharing) {
        HANDLE const file = CreateFileW((folder_ / name).c_str(), GENERIC_READ | GENERIC_WRITE,
                                        sharing, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(file, INVALID_HANDLE_VALUE);
        return file;
    }
    DWORD AttributesOf(std::string_view name) {
        return GetFileAttributesW((folder_ / name).c_str()) &
               (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    }
    void SetAttributes(std::string_view name, DWORD attributes) {
        EXPECT_NE(SetFileAttributesW((folder_ / name).c_str(), attributes), 0);
    }
};

TEST_F(WindowsFilesTest, WhatAnotherProgramHoldsIsDeniedWithItsPath) {
    folder_.MakeFile("a.mp3", "content");
    folder_.MakeFile("b.mp3", "other");
    HANDLE const other = OpenElsewhere("a.mp3", 0);
    const std::string denied = "Permission denied: D:\\a.mp3";
    EXPECT_EQ(FailureOf([&] { files_.OpenBinary("D:\\a.mp3"); }), denied);
    EXPECT_EQ(FailureOf([&] { files_.DeleteFile("D:\\a.mp3"); }), denied);
    EXPECT_EQ(FailureOf([&] { files_.CopyFile("D:\\a.mp3", "D:\\c.mp3", false); }), denied);
    EXPECT_EQ(FailureOf([&] { files_.CopyFile("D:\\b.mp3", "D:\\a.mp3", true); }), denied);
    EXPECT_EQ(FailureOf([&] { files_.WriteEnd("D:\\a.mp3", {.size = 7, .bytes = {}}, 7, {}); }),
              denied);
    EXPECT_EQ(FailureOf([&] {
                  const auto writer = files_.CreateText("D:\\a.mp3");
                  writer->Write("new");
                  writer->Close();
              }),
              denied);
    EXPECT_TRUE(files_.FileExists("D:\\a.mp3"));
    EXPECT_EQ(files_.GetFile("D:\\a.mp3").size, 7U);
    CloseHandle(other);
    EXPECT_EQ(folder_.Content("a.mp3"), "content");
    EXPECT_EQ(folder_.Count(), 2U) << "nothing is left behind";
}

TEST_F(WindowsFilesTest, ReadOnlyFilesAreKept) {
    folder_.MakeFile("Keep/a.pla", "old");
    folder_.MakeFile("Keep/other.pla");
    SetAttributes("Keep/a.pla", FILE_ATTRIBUTE_READONLY);
    const std::string denied = "Permission denied: D:\\Keep\\a.pla";
    EXPECT_EQ(FailureOf([&] { files_.DeleteFile("D:\\Keep\\a.pla"); }), denied);
    EXPECT_EQ(FailureOf([&] { files_.CreateText("D:\\Keep\\a.pla"); }), denied);
    EXPECT_EQ(
        FailureOf([&] { files_.WriteEnd("D:\\Keep\\a.pla", {.size = 3, .bytes = {}}, 3, {}); }),
        denied);
    EXPECT_EQ(FailureOf([&] { files_.DeleteFolder("D:\\Keep"); }), "Permission denied: D:\\Keep");
    EXPECT_EQ(folder_.Count("Keep"), 2U);
    files_.Discard("D:\\Keep\\a.pla");
    EXPECT_EQ(folder_.Count("Keep"), 1U);
}

TEST_F(WindowsFilesTest, CopiesAndReplacedFilesKeepTheirAttributes) {
    folder_.MakeFile("a.mp3", "new");
    SetAttributes("a.mp3", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    files_.CopyFile("D:\\a.mp3", "D:\\b.mp3", false);
    EXPECT_EQ(AttributesOf("b.mp3"), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    folder_.MakeFile("list.pla", "old");
    SetAttributes("list.pla", FILE_ATTRIBUTE_HIDDEN);
    const auto writer = files_.CreateText("D:\\list.pla");
    writer->Write("new");
    writer->Close();
    EXPECT_EQ(folder_.Content("list.pla"), "new");
    EXPECT_EQ(AttributesOf("list.pla"), FILE_ATTRIBUTE_HIDDEN);
    SetAttributes("a.mp3", FILE_ATTRIBUTE_NORMAL);
    SetAttributes("b.mp3", FILE_ATTRIBUTE_NORMAL);
}

TEST_F(WindowsFilesTest, HiddenFilesAreListed) {
    folder_.MakeFile("M/a.mp3");
    SetAttributes("M/a.mp3", FILE_ATTRIBUTE_HIDDEN);
    EXPECT_THAT(FileNames("D:\\M"), ElementsAre("a.mp3"));
}

TEST_F(WindowsFilesTest, PathsMayBeLongerThanTheSystemTakesUnmarked) {
    const std::string name(100, 'x');
    std::string path = "D:\\Long";
    files_.CreateFolder(path);
    for (int depth = 0; depth < 4; ++depth) {
        path += '\\' + name;
        files_.CreateFolder(path);
    }
    const std::string file = path + "\\" + name + ".mp3";
    const auto writer = files_.CreateText(file);
    writer->Write("deep");
    writer->Close();
    EXPECT_EQ(files_.GetFile(file).size, 4U);
    EXPECT_THAT(FileNames(path), ElementsAre(name + ".mp3"));
    files_.CopyFolder("D:\\Long", "D:\\Copy");
    EXPECT_EQ(files_.OpenText("D:\\Copy" + file.substr(7))->ReadLine(), "deep");
    files_.DeleteFolder("D:\\Long");
    files_.DeleteFolder("D:\\Copy");
    EXPECT_EQ(folder_.Count(), 0U);
}

TEST_F(WindowsFilesTest, NamesAreUnicode) {
    const std::string name = "\u00d6l \u65e5\u672c \U0001F3B5.mp3";
    files_.CreateFolder("D:\\\u00c4");
    const auto writer = files_.CreateText("D:\\\u00c4\\" + name);
    writer->Write("x");
    writer->Close();
    EXPECT_THAT(FileNames("D:\\\u00c4"), ElementsAre(name));
    EXPECT_THAT(files_.NamesIn("D:\\").folders, ElementsAre("\u00c4"));
    EXPECT_TRUE(files_.FileExists("D:\\\u00e4\\" + name)) << "letter case does not count";
    EXPECT_EQ(files_.GetFile("D:\\\u00e4\\\u00f6" + name.substr(2)).name, name);
}

TEST_F(WindowsFilesTest, OwnDrivesNeedNoTable) {
    folder_.MakeFile("a.mp3", "sound");
    const std::string own = folder_.Path().string() + "\\a.mp3";
    EXPECT_TRUE(files_.FileExists(own));
    EXPECT_EQ(files_.GetFile(own).path, own);
    EXPECT_TRUE(files_.IsSameFile(own, "D:\\A.MP3"));
    EXPECT_TRUE(files_.IsWithin(folder_.Path().string(), "D:\\"));
    EXPECT_FALSE(files_.FolderExists("Q:\\Music"));
}

/// A drive letter that nothing has.
std::string FreeDrive() {
    // D: is the fixture's.
    char letter = 'E';
    while (((GetLogicalDrives() >> (letter - 'A')) & 1U) != 0)
        ++letter;
    return {letter, ':'};
}

TEST_F(WindowsFilesTest, WhatLiesOnADriveThatIsAwayCannotBeTold) {
    const std::string drive = FreeDrive();
    EXPECT_FALSE(FactsOf(drive + "/Music/a.mp3"));
    EXPECT_EQ(errno, ENODEV);
    EXPECT_FALSE(OpenFolder(drive + "/Music"));
    EXPECT_EQ(errno, ENODEV);
    const std::string here = folder_.Path().string();
    EXPECT_FALSE(FactsOf(here + "/none/a.mp3"));
    EXPECT_EQ(errno, ENOENT) << "the drive is there, and the folder is not";
    EXPECT_FALSE(FactsOf(here + "/a.mp3"));
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(WindowsFilesTest, WhatLeadsThroughAFileIsToldFromWhatIsMissing) {
    folder_.MakeFile("Music/a.mp3", "song");
    const std::string file = (folder_ / "Music/a.mp3").generic_string();
    EXPECT_FALSE(FactsOf(file + "/b/c.mp3"));
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_EQ(OpenLocal(file + "/b.mp3", FileUse::Read), -1);
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_EQ(RemoveFile(file + "/b.mp3"), ENOTDIR);
    EXPECT_EQ(RemoveFile((folder_ / "None/b.mp3").generic_string()), ENOENT);
    EXPECT_TRUE(FactsOf(file));
}

TEST_F(WindowsFilesTest, ADriveThatGoesAwayTakesNothingAlong) {
    const std::string drive = FreeDrive();
    const std::wstring name = WideText(drive), nowhere = (folder_ / "away").native();
    const auto expectUntold = [&](const char* when) {
        EXPECT_THAT(FailureOf([&] { files_.FileExists(drive + "\\Music\\a.mp3"); }),
                    testing::StartsWith("Path/File access error: " + drive))
            << when;
        EXPECT_THAT(FailureOf([&] { files_.FilesIn(drive + "\\Music"); }),
                    testing::StartsWith("Path/File access error: " + drive))
            << when;
    };
    EXPECT_FALSE(files_.FolderExists(drive + "\\")) << "it has never been there";
    ASSERT_NE(DefineDosDeviceW(0, name.c_str(), nowhere.c_str()), 0);
    expectUntold("its letter is there, its disk is not");
    ASSERT_NE(DefineDosDeviceW(DDD_REMOVE_DEFINITION, name.c_str(), nullptr), 0);
    expectUntold("its letter is gone, too");
}

TEST_F(WindowsFilesTest, NamesThatWindowsKeepsForItselfAreNamesLikeOthers) {
    for (const std::string name : {"CON.mp3", "aux", "LPT1.txt"}) {
        const std::string path = "D:\\" + name;
        const auto writer = files_.CreateText(path);
        writer->Write(name);
        writer->Close();
        EXPECT_TRUE(files_.FileExists(path)) << name;
        EXPECT_EQ(files_.OpenText(path)->ReadLine(), name);
        files_.DeleteFile(path);
        EXPECT_FALSE(files_.FileExists(path)) << name;
    }
    EXPECT_EQ(folder_.Count(), 0U);
}

TEST_F(WindowsFilesTest, AnUnfinishedFileOfAnotherThatWorksOnItStays) {
    folder_.MakeFile("M/.quillon-1-0.tmp");
    folder_.MakeFile("M/.quillon-1-1.tmp/in/x");
    const std::string folder = folder_.MakeFolder("M").string();
    const TemporaryEntry ours = MakeTemporaryFile(folder + '/', "D:\\M\\x", NewFileRights, 7);
    const TemporaryEntry oursToo = MakeTemporaryFolder(folder + '/', "D:\\M\\y");
    EXPECT_EQ(RemoveAbandoned(folder), 2U);
    EXPECT_EQ(folder_.Count("M"), 2U);
}

TEST_F(WindowsFilesTest, AFileMayBeDeletedAndReplacedWhileItIsRead) {
    folder_.MakeFile("a.mp3", "content");
    const auto reader = files_.OpenBinary("D:\\a.mp3");
    files_.MoveFile("D:\\a.mp3", "D:\\b.mp3");
    EXPECT_EQ(reader->Read(7).size(), 7U);
    EXPECT_TRUE(files_.FileExists("D:\\b.mp3"));
}

}  // namespace
}  // namespace quillon
