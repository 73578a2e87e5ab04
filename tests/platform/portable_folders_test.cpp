#include <filesystem>

#include "tests/outside/child_process.h"
#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

using DeleteFolderTest = FilesTest;
using MoveFolderTest = FilesTest;

TEST_F(DeleteFolderTest, RemovesAFolderWithAllThatIsInIt) {
    folder_.MakeFile("Pages/a.asp");
    folder_.MakeFile("Pages/Sub/b.asp");
    files_.DeleteFolder("D:\\PAGES\\");
    EXPECT_EQ(folder_.Count(), 0U);
    EXPECT_FALSE(files_.FolderExists("D:\\Pages"));
    files_.CreateFolder("D:\\Pages");
    EXPECT_FALSE(files_.FileExists("D:\\Pages\\A.ASP"));
}

TEST_F(DeleteFolderTest, LeavesNothingToOpenOfAFolderListedJustBefore) {
    folder_.MakeFile("Old/x.mp3", "song");
    EXPECT_EQ(FileNames("D:\\Old"), Names{"x.mp3"});
    files_.DeleteFolder("D:\\Old");
    folder_.MakeFile("Old/x.mp3", "another song");
    EXPECT_EQ(files_.OpenBinary("D:\\Old\\x.mp3")->Size(), 12U);
}

TEST_F(DeleteFolderTest, NeedsAFolder) {
    folder_.MakeFile("x");
    for (const char* const path : {"D:\\none", "D:\\x"}) {
        EXPECT_EQ(FailureOf([&] { files_.DeleteFolder(path); }),
                  std::string("Path not found: ") + path);
    }
    EXPECT_TRUE(folder_.Exists("x"));
}

TEST_F(DeleteFolderTest, NeverRemovesARoot) {
    folder_.MakeFile("x");
    EXPECT_EQ(FailureOf([&] { files_.DeleteFolder("D:\\"); }), "Permission denied: D:\\");
    EXPECT_TRUE(folder_.Exists("x"));
}

POSIX_TEST_F(DeleteFolderTest, RemovesLinksButNotWhatTheyLeadTo) {
    folder_.MakeFile("Music/x.mp3");
    folder_.MakeFolder("Pages");
    std::filesystem::create_directory_symlink(folder_ / "Music", folder_ / "Pages/music");
    std::filesystem::create_directory_symlink(folder_ / "Music", folder_ / "Link");
    files_.DeleteFolder("D:\\Pages");
    files_.DeleteFolder("D:\\Link");
    EXPECT_TRUE(folder_.Exists("Music/x.mp3"));
    EXPECT_EQ(folder_.Count(), 1U);
}

POSIX_TEST_F(DeleteFolderTest, RemovesNothingWhenAFileIsWriteProtected) {
    folder_.MakeFile("Pages/a.asp");
    folder_.MakeFile("Pages/Sub/kept.asp");
    outside::SetRights(folder_.Path(), 0777);
    outside::SetRights(folder_ / "Pages", 0777);
    outside::SetRights(folder_ / "Pages/Sub", 0777);
    outside::SetRights(folder_ / "Pages/Sub/kept.asp", 0444);
    EXPECT_EQ(outside::AsOrdinaryUser(
                  [&] { return FailureOf([&] { files_.DeleteFolder("D:\\Pages"); }); }),
              "Permission denied: D:\\Pages");
    EXPECT_TRUE(folder_.Exists("Pages/a.asp"));
    EXPECT_TRUE(folder_.Exists("Pages/Sub/kept.asp"));
}

POSIX_TEST_F(DeleteFolderTest, RemovesNothingWhereFoldersMayNotBeRemoved) {
    folder_.MakeFile("Closed/Pages/a.asp");
    outside::SetRights(folder_.Path(), 0755);
    outside::SetRights(folder_ / "Closed", 0755);
    outside::SetRights(folder_ / "Closed/Pages", 0777);
    outside::SetRights(folder_ / "Closed/Pages/a.asp", 0666);
    EXPECT_EQ(outside::AsOrdinaryUser(
                  [&] { return FailureOf([&] { files_.DeleteFolder("D:\\Closed\\Pages"); }); }),
              "Permission denied: D:\\Closed\\Pages");
    EXPECT_TRUE(folder_.Exists("Closed/Pages/a.asp"));
}

TEST_F(MoveFolderTest, RenamesAFolderWithAllThatIsInIt) {
    folder_.MakeFile("New/a.asp", "new");
    EXPECT_TRUE(files_.FileExists("D:\\New\\A.asp"));
    files_.MoveFolder("D:\\NEW", "D:\\Pages");
    EXPECT_EQ(folder_.Content("Pages/a.asp"), "new");
    EXPECT_FALSE(files_.FolderExists("D:\\New"));
    EXPECT_TRUE(files_.FileExists("D:\\pages\\A.asp"));
}

TEST_F(MoveFolderTest, FindsInAFolderOfTheSameNameWhatIsThereNow) {
    folder_.MakeFile("Pages/old.asp");
    folder_.MakeFile("New/new.asp");
    EXPECT_TRUE(files_.FileExists("D:\\Pages\\OLD.asp"));
    files_.MoveFolder("D:\\Pages", "D:\\Old");
    files_.MoveFolder("D:\\New", "D:\\Pages");
    EXPECT_FALSE(files_.FileExists("D:\\Pages\\OLD.asp"));
    EXPECT_TRUE(files_.FileExists("D:\\Pages\\NEW.asp"));
    EXPECT_TRUE(files_.FileExists("D:\\Old\\OLD.asp"));
}

TEST_F(MoveFolderTest, LeavesNothingUnderTheOldPathOfAFolderListedJustBefore) {
    folder_.MakeFile("Old/x.mp3", "song");
    EXPECT_EQ(FileNames("D:\\Old"), Names{"x.mp3"});
    EXPECT_EQ(files_.OpenBinary("D:\\Old\\x.mp3")->Size(), 4U);
    files_.MoveFolder("D:\\Old", "D:\\New");
    EXPECT_EQ(FailureOf([&] { files_.OpenBinary("D:\\Old\\x.mp3"); }),
              "File not found: D:\\Old\\x.mp3");
    EXPECT_EQ(files_.OpenBinary("D:\\New\\x.mp3")->Size(), 4U);
}

TEST_F(MoveFolderTest, NeverReplacesAnything) {
    folder_.MakeFile("New/a.asp");
    folder_.MakeFolder("Empty");
    folder_.MakeFile("file");
    for (const char* const target : {"D:\\Empty", "D:\\file", "D:\\New"}) {
        EXPECT_EQ(FailureOf([&] { files_.MoveFolder("D:\\New", target); }),
                  std::string("File already exists: ") + target);
    }
    EXPECT_TRUE(folder_.Exists("New/a.asp"));
}

TEST_F(MoveFolderTest, NeedsAFolderAndAPlaceForIt) {
    folder_.MakeFile("file");
    folder_.MakeFolder("New");
    EXPECT_EQ(FailureOf([&] { files_.MoveFolder("D:\\none", "D:\\x"); }),
              "Path not found: D:\\none");
    EXPECT_EQ(FailureOf([&] { files_.MoveFolder("D:\\file", "D:\\x"); }),
              "Path not found: D:\\file");
    EXPECT_EQ(FailureOf([&] { files_.MoveFolder("D:\\New", "D:\\none\\x"); }),
              "Path not found: D:\\none\\x");
    EXPECT_NE(FailureOf([&] { files_.MoveFolder("D:\\New", "D:\\New\\x"); }), "");
}

}  // namespace
}  // namespace quillon
