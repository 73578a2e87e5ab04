#include "platform/portable/portable_files.h"

#include <unistd.h>

#include "tests/outside/child_process.h"
#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

using ExistsTest = FilesTest;
using CopyTest = FilesTest;
using MoveTest = FilesTest;
using DeleteTest = FilesTest;
using CreateFolderTest = FilesTest;

FileTime ModifiedOf(const std::filesystem::path& path) {
    return FactsOf(path.string()).value_or(FileFacts()).modified;
}

TEST_F(ExistsTest, TellsFilesFromFolders) {
    folder_.MakeFile("Music/x.mp3");
    EXPECT_TRUE(files_.FolderExists("D:\\MUSIC"));
    EXPECT_TRUE(files_.FolderExists("D:\\"));
    EXPECT_TRUE(files_.FolderExists("D:"));
    EXPECT_TRUE(files_.FolderExists("Z:\\"));
    EXPECT_FALSE(files_.FolderExists("D:\\music\\x.mp3"));
    EXPECT_TRUE(files_.FileExists("D:\\music\\X.mp3"));
    EXPECT_FALSE(files_.FileExists("D:\\music"));
    EXPECT_FALSE(files_.FileExists("D:\\music\\y.mp3"));
}

TEST_F(CopyTest, ClearsAwayWhatAKilledCopyLeftInTheFolder) {
    folder_.MakeFile("Music/x.mp3");
    folder_.MakeFile("Backup/.quillon-1-0.tmp");
    files_.CopyFile("D:\\Music\\x.mp3", "D:\\Backup\\x.mp3", false);
    EXPECT_TRUE(folder_.Exists("Backup/x.mp3"));
    EXPECT_FALSE(folder_.Exists("Backup/.quillon-1-0.tmp"));
}

TEST_F(ExistsTest, WhatCannotBeAPathDoesNotExist) {
    for (const char* const path :
         {"", "x", "E:\\", "D:\\a*b", "D:\\..\\x", "\\\\nas\\x", "D:\\a\n"}) {
        EXPECT_FALSE(files_.FileExists(path)) << path;
        EXPECT_FALSE(files_.FolderExists(path)) << path;
    }
}

TEST_F(ExistsTest, GetFileNeedsAFile) {
    folder_.MakeFile("Music/Song.mp3", "abc");
    const FileEntry entry = files_.GetFile("D:\\MUSIC\\song.MP3");
    EXPECT_EQ(entry.name, "Song.mp3");
    EXPECT_EQ(entry.path, "D:\\MUSIC\\Song.mp3");
    EXPECT_EQ(entry.size, 3U);
    for (const char* const path : {"D:\\Music\\none", "D:\\Music", "D:\\none\\x"})
        EXPECT_EQ(FailureOf([&] { files_.GetFile(path); }), std::string("File not found: ") + path);
}

TEST_F(CreateFolderTest, MakesOneFolder) {
    files_.CreateFolder("D:\\New");
    files_.CreateFolder("D:\\new\\Deep");
    EXPECT_TRUE(folder_.Exists("New/Deep"));
    EXPECT_EQ(FailureOf([&] { files_.CreateFolder("D:\\NEW"); }), "File already exists: D:\\NEW");
    EXPECT_EQ(FailureOf([&] { files_.CreateFolder("D:\\a\\b"); }), "Path not found: D:\\a\\b");
    EXPECT_EQ(FailureOf([&] { files_.CreateFolder("D:\\a?"); }), "Bad file name or number: D:\\a?");
    EXPECT_EQ(folder_.Count(), 1U);
}

POSIX_TEST_F(CreateFolderTest, RefusesANameTooLongForTheDisk) {
    std::string name;
    for (int i = 0; i < 200; ++i)
        name += "日";
    EXPECT_EQ(FailureOf([&] { files_.CreateFolder("D:\\" + name); }),
              "Bad file name or number: D:\\" + name);
}

POSIX_TEST_F(CopyTest, KeepsContentTimeAndMode) {
    const std::string content(300'000, 'q');
    folder_.MakeFile("a.mp3", content);
    outside::SetModified(folder_ / "a.mp3", 1500000000, 123456700);
    outside::SetRights(folder_ / "a.mp3", 0600);
    files_.CopyFile("D:\\A.mp3", "D:\\b.mp3", false);
    EXPECT_EQ(folder_.Content("b.mp3"), content);
    EXPECT_EQ(ModifiedOf(folder_ / "b.mp3").seconds, 1500000000);
    EXPECT_EQ(ModifiedOf(folder_ / "b.mp3").nanoseconds, 123456700);
    EXPECT_EQ(FactsOf((folder_ / "b.mp3").string())->rights, 0600U);
    EXPECT_EQ(folder_.Count(), 2U);
}

TEST_F(CopyTest, ReplacesOnlyWhenAllowed) {
    folder_.MakeFile("a", "new");
    folder_.MakeFile("B", "old");
    EXPECT_EQ(FailureOf([&] { files_.CopyFile("D:\\a", "D:\\b", false); }),
              "File already exists: D:\\b");
    EXPECT_EQ(folder_.Content("B"), "old");
    files_.CopyFile("D:\\a", "D:\\b", true);
    EXPECT_EQ(folder_.Content("B"), "new");
    EXPECT_EQ(folder_.Count(), 2U);
}

TEST_F(CopyTest, SaysWhatIsMissing) {
    folder_.MakeFile("a");
    folder_.MakeFolder("Folder");
    EXPECT_EQ(FailureOf([&] { files_.CopyFile("D:\\x", "D:\\y", true); }), "File not found: D:\\x");
    EXPECT_EQ(FailureOf([&] { files_.CopyFile("D:\\a", "D:\\no\\y", true); }),
              "Path not found: D:\\no\\y");
    EXPECT_EQ(FailureOf([&] { files_.CopyFile("D:\\a", "D:\\Folder", true); }),
              "Permission denied: D:\\Folder (this is a folder and no file)");
    EXPECT_EQ(FailureOf([&] { files_.CopyFile("D:\\Folder", "D:\\y", true); }),
              "Permission denied: D:\\Folder (this is a folder and no file)");
    EXPECT_EQ(FailureOf([&] { files_.CopyFile("D:\\a", "D:\\A", true); }),
              "Permission denied: D:\\A");
    EXPECT_EQ(folder_.Count(), 2U);
}

POSIX_TEST_F(CopyTest, FullDiskLeavesNothingBehind) {
    folder_.MakeFile("a", std::string(100'000, 'a'));
    folder_.MakeFile("b", "old");
    EXPECT_EQ(
        outside::WithFilesUpTo(
            50'000, [&] { return FailureOf([&] { files_.CopyFile("D:\\a", "D:\\b", true); }); }),
        "Disk full: D:\\b");
    EXPECT_EQ(folder_.Content("b"), "old");
    EXPECT_EQ(folder_.Count(), 2U);
}

TEST_F(CopyTest, ThousandsOfNewFilesInOneFolder) {
    folder_.MakeFile("a");
    folder_.MakeFolder("Flat");
    for (int i = 0; i < 200; ++i)
        files_.CopyFile("D:\\a", "D:\\FLAT\\" + std::to_string(i) + ".mp3", false);
    EXPECT_EQ(folder_.Count("Flat"), 200U);
    EXPECT_TRUE(files_.FileExists("D:\\flat\\199.MP3"));
}

class WithinTest : public FilesTest {
  protected:
    WithinTest() {
        folder_.MakeFolder("Music/Artist/Album");
        folder_.MakeFolder("Music to come");
        folder_.MakeFile("Music/a.mp3");
    }
};

TEST_F(WithinTest, IsAFolderAndAllThatItHolds) {
    EXPECT_TRUE(files_.IsWithin("D:\\Music", "D:\\Music"));
    EXPECT_TRUE(files_.IsWithin("d:/MUSIC/", "D:\\Music"));
    EXPECT_TRUE(files_.IsWithin("D:\\music\\artist\\album", "D:\\Music\\"));
    EXPECT_TRUE(files_.IsWithin("D:\\Music", "D:\\"));
    EXPECT_FALSE(files_.IsWithin("D:\\Music", "D:\\Music\\Artist"));
    EXPECT_FALSE(files_.IsWithin("D:\\Music to come", "D:\\Music"));
}

TEST_F(WithinTest, IsNothingThatDoesNotExist) {
    EXPECT_FALSE(files_.IsWithin("D:\\None", "D:\\"));
    EXPECT_FALSE(files_.IsWithin("D:\\Music", "D:\\None"));
    EXPECT_FALSE(files_.IsWithin("Q:\\Music", "D:\\"));
    EXPECT_FALSE(files_.IsWithin("D:\\a?b", "D:\\"));
    EXPECT_FALSE(files_.IsWithin("D:\\Music\\a.mp3", "D:\\Music"));
}

POSIX_TEST_F(WithinTest, SeesThroughDrivesAndLinks) {
    DriveTable drives = Drives(folder_);
    drives.Map("M", folder_ / "Music");
    drives.Map("\\\\nas\\music", folder_ / "Music");
    PathResolver resolver(drives);
    PortableFiles files(resolver, [](LogKind, const std::string&) {});
    EXPECT_TRUE(files.IsWithin("M:\\", "D:\\Music"));
    EXPECT_TRUE(files.IsWithin("M:\\Artist", "\\\\nas\\music"));
    EXPECT_TRUE(files.IsWithin("\\\\nas\\music\\Artist", "D:\\"));
    EXPECT_FALSE(files.IsWithin("D:\\", "M:\\"));
    std::filesystem::create_directory_symlink(folder_ / "Music/Artist", folder_ / "Link");
    EXPECT_TRUE(files.IsWithin("D:\\Link\\Album", "M:\\"));
    EXPECT_TRUE(files.IsWithin("D:\\Music\\Artist\\Album", "D:\\Link"));
}

POSIX_TEST_F(WithinTest, KnowsTheNamesOfOneFile) {
    std::filesystem::create_symlink(folder_ / "Music/a.mp3", folder_ / "Music/soft.mp3");
    std::filesystem::create_hard_link(folder_ / "Music/a.mp3", folder_ / "Music/hard.mp3");
    folder_.MakeFile("Music/b.mp3");
    const std::string file = "D:\\Music\\a.mp3";
    EXPECT_TRUE(files_.IsSameFile(file, "d:/music/A.MP3"));
    EXPECT_TRUE(files_.IsSameFile("D:\\Music\\soft.mp3", file));
    EXPECT_TRUE(files_.IsSameFile(file, "D:\\Music\\hard.mp3"));
    EXPECT_FALSE(files_.IsSameFile(file, "D:\\Music\\b.mp3"));
    EXPECT_FALSE(files_.IsSameFile(file, "D:\\Music\\none.mp3"));
    EXPECT_FALSE(files_.IsSameFile("D:\\Music", "D:\\Music"));
    std::filesystem::create_symlink("/none", folder_ / "Music/lost.mp3");
    EXPECT_THROW(files_.IsSameFile(file, "D:\\Music\\lost.mp3"), Failure);
}

using DiscardTest = FilesTest;

TEST_F(DiscardTest, RemovesFilesAndEmptyFolders) {
    folder_.MakeFile("Music/Artist/Song.mp3");
    EXPECT_EQ(FailureOf([&] { files_.Discard("D:\\Music\\Artist"); }).substr(0, 22),
              "Path/File access error");
    files_.Discard("D:\\music\\artist\\SONG.mp3");
    files_.Discard("D:\\Music\\Artist");
    EXPECT_FALSE(folder_.Exists("Music/Artist"));
    EXPECT_FALSE(files_.FolderExists("D:\\Music\\Artist"));
    EXPECT_EQ(FailureOf([&] { files_.Discard("D:\\Music\\Artist"); }),
              "File not found: D:\\Music\\Artist");
    files_.CreateFolder("D:\\Music\\Artist");
    EXPECT_TRUE(folder_.Exists("Music/Artist"));
}

POSIX_TEST_F(DiscardTest, RemovesWriteProtectedFiles) {
    folder_.MakeFile("M/new.mp3");
    outside::SetRights(folder_.Path(), 0755);
    outside::SetRights(folder_ / "M", 0777);
    outside::SetRights(folder_ / "M/new.mp3", 0444);
    EXPECT_EQ(outside::AsOrdinaryUser(
                  [&] { return FailureOf([&] { files_.Discard("D:\\M\\new.mp3"); }); }),
              "");
    EXPECT_FALSE(folder_.Exists("M/new.mp3"));
}

TEST_F(DeleteTest, RemovesAFile) {
    folder_.MakeFile("Song.mp3");
    folder_.MakeFolder("Folder");
    files_.DeleteFile("D:\\song.mp3");
    EXPECT_FALSE(folder_.Exists("Song.mp3"));
    EXPECT_EQ(FailureOf([&] { files_.DeleteFile("D:\\song.mp3"); }),
              "File not found: D:\\song.mp3");
    EXPECT_EQ(FailureOf([&] { files_.DeleteFile("D:\\Folder"); }), "File not found: D:\\Folder");
    EXPECT_TRUE(folder_.Exists("Folder"));
}

POSIX_TEST_F(DeleteTest, KeepsWhatIsWriteProtected) {
    folder_.MakeFile("M/keep.pla");
    folder_.MakeFile("N/closed.pla");
    outside::SetRights(folder_.Path(), 0755);
    outside::SetRights(folder_ / "M", 0777);
    outside::SetRights(folder_ / "M/keep.pla", 0444);
    outside::SetRights(folder_ / "N", 0555);
    outside::SetRights(folder_ / "N/closed.pla", 0666);
    EXPECT_EQ(outside::AsOrdinaryUser([&] {
                  return FailureOf([&] { files_.DeleteFile("D:\\M\\keep.pla"); }) + '\n' +
                         FailureOf([&] { files_.DeleteFile("D:\\N\\closed.pla"); }) + '\n' +
                         FailureOf([&] { files_.CreateText("D:\\M\\keep.pla"); }) + '\n' +
                         FailureOf([&] { files_.CreateText("D:\\N\\new.pla"); }) + '\n' +
                         FailureOf([&] { files_.CreateFolder("D:\\N\\New"); });
              }),
              "Permission denied: D:\\M\\keep.pla\nPermission denied: D:\\N\\closed.pla\n"
              "Permission denied: D:\\M\\keep.pla\nPermission denied: D:\\N\\new.pla\n"
              "Permission denied: D:\\N\\New");
    EXPECT_TRUE(folder_.Exists("M/keep.pla"));
    EXPECT_TRUE(folder_.Exists("N/closed.pla"));
    outside::SetRights(folder_ / "N", 0755);
}

TEST_F(MoveTest, RenamesAndMoves) {
    folder_.MakeFile("a/Song.mp3", "x");
    folder_.MakeFolder("b");
    files_.MoveFile("D:\\A\\song.mp3", "D:\\a\\Other.mp3");
    EXPECT_TRUE(folder_.Exists("a/Other.mp3"));
    files_.MoveFile("D:\\a\\Other.mp3", "D:\\B\\Third.mp3");
    EXPECT_EQ(folder_.Content("b/Third.mp3"), "x");
    EXPECT_EQ(folder_.Count("a"), 0U);
    EXPECT_TRUE(files_.FileExists("D:\\b\\THIRD.mp3"));
    EXPECT_FALSE(files_.FileExists("D:\\a\\other.mp3"));
}

TEST_F(MoveTest, ChangesLetterCaseAlone) {
    folder_.MakeFile("a/song.mp3", "x");
    files_.MoveFile("D:\\a\\song.mp3", "D:\\a\\Song.mp3");
    EXPECT_EQ(FileNames("D:\\a"), Names{"Song.mp3"});
    files_.MoveFile("D:\\A\\SONG.mp3", "D:\\a\\SONG.MP3");
    EXPECT_EQ(FileNames("D:\\a"), Names{"SONG.MP3"});
    files_.MoveFile("D:\\a\\SONG.MP3", "D:\\a\\SONG.MP3");
    EXPECT_EQ(folder_.Content("a/SONG.MP3"), "x");
    EXPECT_TRUE(files_.FileExists("D:\\a\\song.mp3"));
}

POSIX_TEST_F(MoveTest, NeverReplacesAnotherFile) {
    folder_.MakeFile("a.mp3", "a");
    folder_.MakeFile("B.mp3", "b");
    folder_.MakeFile("A.mp3", "capital");
    std::filesystem::create_hard_link(folder_ / "a.mp3", folder_ / "linked.mp3");
    std::filesystem::create_symlink("nowhere", folder_ / "broken.mp3");
    for (const char* const name : {"D:\\b.mp3", "D:\\A.mp3", "D:\\linked.mp3", "D:\\broken.mp3"})
        EXPECT_EQ(FailureOf([&] { files_.MoveFile("D:\\a.mp3", name); }),
                  std::string("File already exists: ") + name);
    EXPECT_EQ(folder_.Content("a.mp3"), "a");
    EXPECT_EQ(folder_.Content("A.mp3"), "capital");
    EXPECT_EQ(folder_.Content("B.mp3"), "b");
}

TEST_F(MoveTest, SaysWhatIsMissing) {
    folder_.MakeFile("a");
    folder_.MakeFolder("Folder");
    EXPECT_EQ(FailureOf([&] { files_.MoveFile("D:\\x", "D:\\y"); }), "File not found: D:\\x");
    EXPECT_EQ(FailureOf([&] { files_.MoveFile("D:\\Folder", "D:\\y"); }),
              "File not found: D:\\Folder");
    EXPECT_EQ(FailureOf([&] { files_.MoveFile("D:\\a", "D:\\no\\a"); }),
              "Path not found: D:\\no\\a");
    EXPECT_EQ(FailureOf([&] { files_.MoveFile("D:\\a", "D:\\..\\a"); }),
              "Bad file name or number: D:\\..\\a");
    EXPECT_TRUE(folder_.Exists("a"));
}

POSIX_TEST_F(MoveTest, CrossesVolumes) {
    const std::filesystem::path other = "/dev/shm";
    const auto here = FactsOf(folder_.Path().string()), there = FactsOf(other.string());
    if (!there || here->identity.device == there->identity.device) return;
    const std::string target = "Z:\\dev\\shm\\quillon-test-" + std::to_string(getpid());
    folder_.MakeFile("a", "content");
    files_.MoveFile("D:\\a", target);
    EXPECT_FALSE(folder_.Exists("a"));
    EXPECT_EQ(files_.OpenText(target)->ReadLine(), "content");
    files_.DeleteFile(target);
}

}  // namespace
}  // namespace quillon
