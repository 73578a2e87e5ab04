#include "platform/portable/safe_file.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/platform/temporary_folder.h"

namespace quillon {
namespace {

TEST(SafeFile, TakesItsNameInCommit) {
    const TemporaryFolder folder;
    SafeFile file((folder / "a").string(), "D:\\a", SafeFile::Existing::Refuse);
    file.Write("x");
    EXPECT_FALSE(folder.Exists("a"));
    file.Commit();
    EXPECT_EQ(folder.Content("a"), "x");
    EXPECT_EQ(folder.Count(), 1U);
}

TEST(SafeFile, DoesNotReplaceAFileThatAppearedMeanwhile) {
    const TemporaryFolder folder;
    {
        SafeFile file((folder / "a").string(), "D:\\a", SafeFile::Existing::Refuse);
        folder.MakeFile("a", "other");
        EXPECT_EQ(FailureOf([&] { file.Commit(); }), "File already exists: D:\\a");
    }
    EXPECT_EQ(folder.Content("a"), "other");
    EXPECT_EQ(folder.Count(), 1U);
}

TEST(SafeFile, SaysWhenTheFolderIsGone) {
    const TemporaryFolder folder;
    folder.MakeFolder("sub");
    SafeFile file((folder / "sub/a").string(), "D:\\sub\\a", SafeFile::Existing::Replace);
    std::filesystem::remove_all(folder / "sub");
    EXPECT_EQ(FailureOf([&] { file.Commit(); }), "Path not found: D:\\sub\\a");
}

TEST(SafeFile, KeepsModeAndLinkOfAReplacedFile) {
    const TemporaryFolder folder;
    folder.MakeFile("real/a", "old");
    chmod((folder / "real/a").c_str(), 0640);
    std::filesystem::create_symlink("real/a", folder / "link");
    SafeFile file((folder / "link").string(), "D:\\link", SafeFile::Existing::Replace);
    file.Write("new");
    file.Commit();
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(folder.Content("real/a"), "new");
    struct stat facts{};
    stat((folder / "real/a").c_str(), &facts);
    EXPECT_EQ(facts.st_mode & 0777U, 0640U);
    EXPECT_EQ(folder.Count("real"), 1U);
}

TEST(SafeFile, ReplacesALinkThatLeadsNowhere) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("nowhere", folder / "link");
    SafeFile file((folder / "link").string(), "D:\\link", SafeFile::Existing::Replace);
    file.Write("new");
    file.Commit();
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(folder.Content("link"), "new");
}

TEST(SafeFile, TargetMayHaveTheLongestName) {
    const TemporaryFolder folder;
    const std::string longest(255, 'x');
    SafeFile file((folder / longest).string(), longest, SafeFile::Existing::Refuse);
    file.Commit();
    EXPECT_TRUE(folder.Exists(longest));
}

TEST(SafeFile, KnowsItsTemporaryNames) {
    EXPECT_TRUE(SafeFile::IsTemporaryName(".quillon-12-0.tmp"));
    for (const char* const name : {"quillon-12.tmp", ".quillon-.tmp", ".quillon-12", "x.tmp", ""})
        EXPECT_FALSE(SafeFile::IsTemporaryName(name)) << name;
}

TEST(SafeFile, RemovesWhatAKilledRunLeftButNothingInUse) {
    const TemporaryFolder folder;
    const std::string target = (folder / "a").string();
    const pid_t child = fork();
    if (child == 0) {
        SafeFile file(target, "D:\\a", SafeFile::Existing::Replace);
        file.Write("half");
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(folder.Count(), 1U);
    EXPECT_FALSE(folder.Exists("a"));
    folder.MakeFile("keep.tmp");
    const SafeFile inUse(target, "D:\\a", SafeFile::Existing::Replace);
    EXPECT_EQ(folder.Count(), 3U);
    EXPECT_EQ(SafeFile::RemoveAbandoned(folder.Path().string()), 1U);
    EXPECT_EQ(folder.Count(), 2U);
    EXPECT_EQ(SafeFile::RemoveAbandoned((folder / "none").string()), 0U);
}

}  // namespace
}  // namespace quillon
