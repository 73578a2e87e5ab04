// Runs in processes of their own.
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/outside/child_process.h"
#include "tests/support/real_library.h"

namespace quillon::support {
namespace {

namespace fs = std::filesystem;

constexpr ::uid_t Nobody = 65534;

/// Runs work in a process of its own; the status it ended with.
int StatusOf(const std::function<void()>& work) {
    outside::ChildProcess child([&] {
        work();
        return ::testing::Test::HasFailure() ? 1 : 0;
    });
    return child.Wait();
}

}  // namespace

bool RunsWellUnprivileged(const fs::path& folder, const std::function<void()>& work) {
    const int status = StatusOf([&] {
        if (::geteuid() == 0) {
            EXPECT_EQ(::chown(folder.c_str(), Nobody, Nobody), 0);
            for (const auto& entry : fs::recursive_directory_iterator(folder))
                EXPECT_EQ(::lchown(entry.path().c_str(), Nobody, Nobody), 0);
            EXPECT_EQ(::setegid(Nobody), 0);
            EXPECT_EQ(::seteuid(Nobody), 0);
        }
        work();
    });
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool IsKilled(const std::function<void()>& work) {
    const int status = StatusOf(work);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

}  // namespace quillon::support
