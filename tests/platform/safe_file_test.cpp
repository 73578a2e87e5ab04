#include "platform/portable/safe_file.h"

#include <gtest/gtest.h>

#include "tests/outside/file_marks.h"
#include "tests/outside/posix_test.h"
#include "tests/outside/temporary_folder.h"
#include "tests/platform/failure_of.h"

namespace quillon {
namespace {

TEST(SafeFile, TakesItsNameInCommit) {
    const outside::TemporaryFolder folder;
    SafeFile file((folder / "a").string(), "D:\\a", SafeFile::Existing::Refuse);
    file.Write("x");
    EXPECT_FALSE(folder.Exists("a"));
    file.Commit();
    EXPECT_EQ(folder.Content("a"), "x");
    EXPECT_EQ(folder.Count(), 1U);
}

TEST(SafeFile, DoesNotReplaceAFileThatAppearedMeanwhile) {
    const outside::TemporaryFolder folder;
    {
        SafeFile file((folder / "a").string(), "D:\\a", SafeFile::Existing::Refuse);
        folder.MakeFile("a", "other");
        EXPECT_EQ(FailureOf([&] { file.Commit(); }), "File already exists: D:\\a");
    }
    EXPECT_EQ(folder.Content("a"), "other");
    EXPECT_EQ(folder.Count(), 1U);
}

POSIX_TEST(SafeFile, SaysWhenTheFolderIsGone) {
    const outside::TemporaryFolder folder;
    folder.MakeFolder("sub");
    SafeFile file((folder / "sub/a").string(), "D:\\sub\\a", SafeFile::Existing::Replace);
    std::filesystem::remove_all(folder / "sub");
    EXPECT_EQ(FailureOf([&] { file.Commit(); }), "Path not found: D:\\sub\\a");
}

POSIX_TEST(SafeFile, KeepsModeAndLinkOfAReplacedFile) {
    const outside::TemporaryFolder folder;
    folder.MakeFile("real/a", "old");
    outside::SetRights(folder / "real/a", 0640);
    std::filesystem::create_symlink("real/a", folder / "link");
    SafeFile file((folder / "link").string(), "D:\\link", SafeFile::Existing::Replace);
    file.Write("new");
    file.Commit();
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(folder.Content("real/a"), "new");
    EXPECT_EQ(FactsOf((folder / "real/a").string())->rights, 0640U);
    EXPECT_EQ(folder.Count("real"), 1U);
}

POSIX_TEST(SafeFile, ReplacesALinkThatLeadsNowhere) {
    const outside::TemporaryFolder folder;
    std::filesystem::create_symlink("nowhere", folder / "link");
    SafeFile file((folder / "link").string(), "D:\\link", SafeFile::Existing::Replace);
    file.Write("new");
    file.Commit();
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(folder.Content("link"), "new");
}

TEST(SafeFile, TargetMayHaveTheLongestName) {
    const outside::TemporaryFolder folder;
    const std::string longest(255, 'x');
    SafeFile file((folder / longest).string(), longest, SafeFile::Existing::Refuse);
    file.Commit();
    EXPECT_TRUE(folder.Exists(longest));
}

POSIX_TEST(SafeFile, OfTheProgramsOwnFilesFollowsNoLink) {
    const outside::TemporaryFolder folder;
    folder.MakeFile("real", "another's");
    std::filesystem::create_symlink("real", folder / "link");
    std::filesystem::create_symlink("nowhere", folder / "dangling");
    for (const std::string name : {"link", "dangling"}) {
        EXPECT_EQ(FailureOf([&] {
                      const SafeFile file((folder / name).string(), "D:\\" + name,
                                          SafeFile::Existing::ReplaceOwn);
                  }),
                  "Permission denied: D:\\" + name + " (this is a symbolic link and no file)");
    }
    EXPECT_EQ(folder.Content("real"), "another's");
    EXPECT_FALSE(folder.Exists("nowhere"));
    EXPECT_EQ(folder.Count(), 3U);
}

POSIX_TEST(SafeFile, OfTheProgramsOwnFilesReplacesALinkThatAppearedMeanwhileAndNotItsTarget) {
    const outside::TemporaryFolder folder;
    folder.MakeFile("real", "another's");
    SafeFile file((folder / "own").string(), "D:\\own", SafeFile::Existing::ReplaceOwn);
    file.Write("new");
    std::filesystem::create_symlink("real", folder / "own");
    file.Commit();
    EXPECT_EQ(folder.Content("real"), "another's");
    EXPECT_EQ(folder.Content("own"), "new");
}

POSIX_TEST(SafeFile, RefusesALinkWhereNothingMayBeReplaced) {
    const outside::TemporaryFolder folder;
    std::filesystem::create_symlink("nowhere", folder / "link");
    EXPECT_EQ(FailureOf([&] {
                  const SafeFile file((folder / "link").string(), "D:\\link",
                                      SafeFile::Existing::Refuse);
              }),
              "File already exists: D:\\link");
}

POSIX_TEST(SafeFile, SaysWhatStandsInItsPlace) {
    const outside::TemporaryFolder folder;
    folder.MakeFolder("folder");
    outside::MakePipe(folder / "pipe");
    for (const std::string name : {"folder", "pipe"}) {
        for (const auto existing : {SafeFile::Existing::Replace, SafeFile::Existing::ReplaceOwn}) {
            EXPECT_EQ(FailureOf([&] {
                          const SafeFile file((folder / name).string(), "D:\\x", existing);
                      }),
                      "Permission denied: D:\\x (this is a " + name + " and no file)");
        }
    }
    EXPECT_EQ(FailureOf([&] {
                  const SafeFile file("/dev/null", "D:\\null", SafeFile::Existing::Replace);
              }),
              "Permission denied: D:\\null (this is a device and no file)");
}

}  // namespace
}  // namespace quillon
