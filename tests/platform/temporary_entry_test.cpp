#include "platform/portable/temporary_entry.h"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

#include "platform/portable/safe_file.h"
#include "platform/portable/safe_folder.h"
#include "tests/outside/child_process.h"
#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

/// Does something in a process that is killed then.
template <typename Action>
void Killed(Action action) {
    outside::ChildProcess child([&]() -> int {
        action();
        return kill(getpid(), SIGKILL);
    });
    child.Wait();
}

class TemporaryEntryTest : public FilesTest {
  protected:
    /// Leaves an unfinished file and an unfinished folder with a file in it.
    void LeaveUnfinished(const std::string& name) {
        Killed([&] {
            SafeFile file((folder_ / name / "a").string(), "D:\\a", SafeFile::Existing::Replace);
            file.Write("half");
            const SafeFolder folder((folder_ / name / "b").string(), "D:\\b");
            SafeFile inner(folder.Draft() + "/c", "D:\\c", SafeFile::Existing::Replace);
            inner.Commit();
            kill(getpid(), SIGKILL);
        });
    }
};

TEST_F(TemporaryEntryTest, HasANameThatIsKnown) {
    for (const char* const name : {".quillon-12-0.tmp", ".quillon-4194304-17.tmp"})
        EXPECT_TRUE(IsTemporaryName(name)) << name;
    for (const char* const name :
         {"quillon-12.tmp", ".quillon-.tmp", ".quillon-12", "x.tmp", "", ".quillon-my files.tmp"})
        EXPECT_FALSE(IsTemporaryName(name)) << name;
}

TEST_F(TemporaryEntryTest, OfAKilledRunIsRemovedButNothingInUse) {
    folder_.MakeFolder("x");
    LeaveUnfinished("x");
    EXPECT_EQ(folder_.Count("x"), 2U);
    folder_.MakeFile("x/keep.tmp");
    const SafeFile file((folder_ / "x/a").string(), "D:\\a", SafeFile::Existing::Replace);
    const SafeFolder folder((folder_ / "x/b").string(), "D:\\b");
    EXPECT_EQ(folder_.Count("x"), 5U);
    EXPECT_EQ(RemoveAbandoned((folder_ / "x").string()), 2U);
    EXPECT_EQ(folder_.Count("x"), 3U);
    EXPECT_TRUE(std::filesystem::exists(folder.Draft()));
    EXPECT_EQ(RemoveAbandoned((folder_ / "none").string()), 0U);
}

TEST_F(TemporaryEntryTest, ThatIsALinkIsNotFollowed) {
    folder_.MakeFile("real/x");
    std::filesystem::create_directory_symlink("real", folder_ / ".quillon-1-0.tmp");
    EXPECT_EQ(RemoveAbandoned(folder_.Path().string()), 0U);
    EXPECT_TRUE(folder_.Exists("real/x"));
}

TEST_F(TemporaryEntryTest, IsRemovedWhereAFileIsWritten) {
    folder_.MakeFolder("x");
    LeaveUnfinished("x");
    files_.CreateText("D:\\x\\new.pla")->Close();
    EXPECT_EQ(folder_.Count("x"), 1U);
}

TEST_F(TemporaryEntryTest, IsRemovedWhenAskedFor) {
    folder_.MakeFolder("X");
    LeaveUnfinished("X");
    files_.RemoveUnfinished("D:\\none");
    files_.RemoveUnfinished("?");
    files_.RemoveUnfinished("Q:\\x");
    files_.RemoveUnfinished("D:\\x\\");
    EXPECT_EQ(folder_.Count("X"), 0U);
}

TEST_F(TemporaryEntryTest, IsRemovedByListingsOnlyOfARun) {
    folder_.MakeFolder("x");
    LeaveUnfinished("x");
    EXPECT_TRUE(files_.FilesIn("D:\\x").empty());
    EXPECT_EQ(folder_.Count("x"), 2U) << "a look changes nothing";
    files_.ClearUnfinished();
    EXPECT_TRUE(files_.SubFolders("D:\\x").empty());
    EXPECT_EQ(folder_.Count("x"), 0U);
}

TEST_F(TemporaryEntryTest, IsNotLostToAnotherRunThatClearsUpAtThatMoment) {
    std::atomic<bool> done{false};
    std::thread other([&] {
        while (!done)
            RemoveAbandoned(folder_.Path().string());
    });
    const std::string folder = folder_.Path().string() + '/';
    std::size_t lost = 0;
    for (int i = 0; i < 500; ++i) {
        const TemporaryEntry file = MakeTemporaryFile(folder, "D:\\", 0666);
        const TemporaryEntry inner = MakeTemporaryFolder(folder, "D:\\");
        std::this_thread::yield();
        if (!std::filesystem::remove(file.path)) ++lost;
        if (!std::filesystem::remove(inner.path)) ++lost;
    }
    done = true;
    other.join();
    EXPECT_EQ(lost, 0U);
}

}  // namespace
}  // namespace quillon
