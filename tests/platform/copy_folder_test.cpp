#include <filesystem>

#include "tests/outside/child_process.h"
#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

class CopyFolderTest : public FilesTest {
  protected:
    std::string FailureOfCopy(std::string_view from, std::string_view to) {
        return FailureOf([&] { files_.CopyFolder(from, to); });
    }
};

TEST_F(CopyFolderTest, MakesAFolderWithAllThatIsInTheOther) {
    folder_.MakeFile("Lists/a.pla", "A");
    folder_.MakeFile("Lists/Sub/b.pla", "B");
    folder_.MakeFolder("Lists/Empty");
    files_.CopyFolder("D:\\lists", "D:\\Copy");
    EXPECT_EQ(folder_.Content("Copy/a.pla"), "A");
    EXPECT_EQ(folder_.Content("Copy/Sub/b.pla"), "B");
    EXPECT_EQ(folder_.Count("Copy"), 3U);
    EXPECT_EQ(folder_.Count(), 2U);
    EXPECT_TRUE(files_.FileExists("D:\\copy\\A.PLA"));
    EXPECT_EQ(files_.GetFile("D:\\Copy\\a.pla").modified,
              files_.GetFile("D:\\Lists\\a.pla").modified);
}

TEST_F(CopyFolderTest, AndFilesAreWatchedAsTheyAreCopied) {
    folder_.MakeFile("Lists/a.pla", std::string(100, 'a'));
    folder_.MakeFile("Lists/Sub/b.pla", std::string(20, 'b'));
    std::uint64_t copied = 0;
    files_.WatchCopies([&copied](std::uint64_t bytes) { copied += bytes; });
    files_.CopyFolder("D:\\Lists", "D:\\Copy");
    EXPECT_EQ(copied, 120U);
    files_.CopyFile("D:\\Lists\\a.pla", "D:\\b.pla", false);
    EXPECT_EQ(copied, 220U);
    EXPECT_EQ(SizeOf(files_, "D:\\Copy"), 120U);
    EXPECT_EQ(SizeOf(files_, "D:\\b.pla"), 100U);
    EXPECT_EQ(SizeOf(files_, "D:\\none"), 0U);
    files_.WatchCopies({});
    files_.CopyFile("D:\\Lists\\a.pla", "D:\\c.pla", false);
    EXPECT_EQ(copied, 220U);
}

POSIX_TEST_F(CopyFolderTest, TakesFilesAndFoldersThatDifferInLetterCaseAlone) {
    folder_.MakeFile("Lists/a.pla", "small");
    folder_.MakeFile("Lists/A.pla", "capital");
    folder_.MakeFile("Lists/sub/x", "small");
    folder_.MakeFile("Lists/SUB/x", "capital");
    files_.CopyFolder("D:\\Lists", "D:\\Copy");
    EXPECT_EQ(folder_.Content("Copy/A.pla"), "capital");
    EXPECT_EQ(folder_.Content("Copy/a.pla"), "small");
    EXPECT_EQ(folder_.Content("Copy/sub/x"), "small");
    EXPECT_EQ(folder_.Content("Copy/SUB/x"), "capital");
}

POSIX_TEST_F(CopyFolderTest, CopiesWhatLinksLeadToAndWritesThroughNone) {
    folder_.MakeFile("Store/a.pla", "A");
    folder_.MakeFolder("Lists");
    std::filesystem::create_symlink("../Store/a.pla", folder_ / "Lists/a.pla");
    files_.CopyFolder("D:\\Lists", "D:\\Copy");
    EXPECT_FALSE(std::filesystem::is_symlink(folder_ / "Copy/a.pla"));
    EXPECT_EQ(folder_.Content("Copy/a.pla"), "A");
}

POSIX_TEST_F(CopyFolderTest, LeavesOutALinkThatLeadsNowhere) {
    folder_.MakeFile("Lists/a.pla", "A");
    std::filesystem::create_symlink("../Store/b.pla", folder_ / "Lists/b.pla");
    files_.CopyFolder("D:\\Lists", "D:\\Copy");
    EXPECT_EQ(folder_.Count("Copy"), 1U);
}

/// A run may see it a moment later, and change what has no copy.
POSIX_TEST_F(CopyFolderTest, MakesNoCopyWithoutWhatCannotBeLookedAt) {
    folder_.MakeFile("Lists/a.pla", "A");
    std::filesystem::create_symlink("loop.pla", folder_ / "Lists/loop.pla");
    EXPECT_EQ(FailureOfCopy("D:\\Lists", "D:\\Copy"),
              "Path/File access error: D:\\Lists\\loop.pla");
    EXPECT_FALSE(std::filesystem::exists(folder_ / "Copy"));
}

POSIX_TEST_F(CopyFolderTest, NeverTouchesWhatIsThere) {
    folder_.MakeFile("Lists/a.pla", "A");
    folder_.MakeFolder("Empty");
    folder_.MakeFile("file", "x");
    std::filesystem::create_symlink("nowhere", folder_ / "link");
    for (const std::string name : {"Empty", "empty", "file", "link"}) {
        EXPECT_EQ(FailureOfCopy("D:\\Lists", "D:\\" + name), "File already exists: D:\\" + name);
    }
    EXPECT_EQ(FailureOfCopy("D:\\Lists", "D:\\"), "File already exists: D:\\");
    EXPECT_EQ(folder_.Count("Empty"), 0U);
    EXPECT_EQ(folder_.Count(), 4U);
}

TEST_F(CopyFolderTest, NeedsAFolderAndAPlaceForTheCopy) {
    folder_.MakeFile("Lists/a.pla");
    EXPECT_EQ(FailureOfCopy("D:\\None", "D:\\Copy"), "Path not found: D:\\None");
    EXPECT_EQ(FailureOfCopy("D:\\Lists", "D:\\None\\Copy"), "Path not found: D:\\None\\Copy");
    EXPECT_EQ(folder_.Count(), 1U);
}

TEST_F(CopyFolderTest, DoesNotCopyAFolderIntoItself) {
    folder_.MakeFile("Lists/a.pla");
    folder_.MakeFolder("Lists/Sub");
    for (const std::string target : {"D:\\Lists\\Copy", "D:\\Lists\\Sub\\Copy"})
        EXPECT_EQ(FailureOfCopy("D:\\Lists", target), "Permission denied: " + target);
    EXPECT_EQ(folder_.Count("Lists"), 2U);
}

POSIX_TEST_F(CopyFolderTest, LeavesNothingWhenTheDiskIsFull) {
    folder_.MakeFile("Lists/a.pla", "small");
    folder_.MakeFile("Lists/Sub/b.pla", std::string(100'000, 'b'));
    EXPECT_EQ(
        outside::WithFilesUpTo(50'000, [&] { return FailureOfCopy("D:\\Lists", "D:\\Copy"); }),
        "Disk full: D:\\Copy\\Sub\\b.pla");
    EXPECT_EQ(folder_.Count(), 1U);
}

POSIX_TEST_F(CopyFolderTest, LeavesNothingWhenAFileCannotBeRead) {
    folder_.MakeFile("Lists/a.pla");
    folder_.MakeFile("Lists/b.pla");
    outside::SetRights(folder_ / "Lists/b.pla", 0);
    outside::SetRights(folder_ / "Lists", 0755);
    outside::SetRights(folder_.Path(), 0777);
    EXPECT_EQ(outside::AsOrdinaryUser([&] { return FailureOfCopy("D:\\Lists", "D:\\Copy"); }),
              "Permission denied: D:\\Lists\\b.pla");
    EXPECT_EQ(folder_.Count(), 1U);
}

TEST_F(CopyFolderTest, ClearsAwayWhatAKilledRunLeftUnfinished) {
    folder_.MakeFile("Lists/a.pla");
    folder_.MakeFile(".quillon-1-0.tmp/a.pla");
    EXPECT_TRUE(files_.SubFolders("D:\\").size() == 1U) << "a part of a folder is not shown";
    files_.CopyFolder("D:\\Lists", "D:\\Copy");
    EXPECT_EQ(folder_.Count(), 2U);
}

}  // namespace
}  // namespace quillon
