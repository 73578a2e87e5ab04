#include "bench/child_process.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "tests/outside/temporary_folder.h"

namespace quillon::bench {
namespace {

TEST(RunProcess, TellsEachLineWithTheProcessorTimeSoFar) {
    std::vector<std::string> lines;
    std::vector<double> times;
    const Usage used = RunProcess(
        {"/bin/sh", "-c", "echo one; i=0; while [ $i -lt 200000 ]; do i=$((i+1)); done; echo two"},
        {.onLine = [&](std::string_view line, double processor) {
            lines.emplace_back(line);
            times.push_back(processor);
        }});
    EXPECT_EQ(lines, (std::vector<std::string>{"one", "two"}));
    ASSERT_EQ(times.size(), 2U);
    EXPECT_LT(times[0], times[1]);
    EXPECT_GT(used.processor, 0.0);
}

TEST(RunProcess, ReturnsTheExitStatusAlsoOfAProcessThatWasKilled) {
    EXPECT_EQ(RunProcess({"/bin/sh", "-c", "exit 3"}).exitStatus, 3);
    EXPECT_EQ(RunProcess({"/bin/sh", "-c", "kill -KILL $$"}).exitStatus, 128 + SIGKILL);
}

TEST(RunToSuccess, ThrowsAtAnyOtherStatus) {
    EXPECT_NO_THROW(RunToSuccess({"/bin/sh", "-c", "exit 0"}));
    EXPECT_THROW(RunToSuccess({"/bin/sh", "-c", "exit 1"}), std::runtime_error);
}

TEST(Companion, IsToldToEndWithItsScopeAndWaitedFor) {
    const outside::TemporaryFolder folder;
    const auto ready = folder.Path() / "ready", ended = folder.Path() / "ended";
    {
        const Companion companion({"/bin/sh", "-c",
                                   "trap '/bin/touch \"$1\"; exit' TERM; /bin/touch \"$0\"; while "
                                   ":; do /bin/sleep 0.01; done",
                                   ready.string(), ended.string()});
        while (!std::filesystem::exists(ready))
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_GT(companion.Processor(), 0.0);
        EXPECT_FALSE(std::filesystem::exists(ended));
    }
    EXPECT_TRUE(std::filesystem::exists(ended));
}

TEST(InstalledProgram, IsFoundWhereTheShellWouldFindIt) {
    EXPECT_TRUE(InstalledProgram("sh"));
    EXPECT_FALSE(InstalledProgram("no such program"));
}

}  // namespace
}  // namespace quillon::bench
