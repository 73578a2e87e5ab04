#include "app/signals.h"

#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

namespace quillon {
namespace {

TEST(AbortSignals, PressAbortOnTheFirstSignal) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const AbortSignals signals;
        EXPECT_FALSE(AbortSignals::AbortRequested());
        std::raise(signal);
        EXPECT_TRUE(AbortSignals::AbortRequested());
        EXPECT_TRUE(AbortSignals::AbortRequested()) << "it stays pressed";
    }
}

TEST(AbortSignalsDeathTest, TheSecondSignalEndsTheProcessAtOnce) {
    EXPECT_EXIT(
        {
            const AbortSignals signals;
            std::raise(SIGTERM);
            std::raise(SIGINT);
        },
        testing::ExitedWithCode(3), "");
}

TEST(AbortSignalsDeathTest, TheSecondSignalDoesTheLastActFirst) {
    EXPECT_EXIT(
        {
            const AbortSignals signals;
            AbortSignals::SetLastAct([]() noexcept {
                [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, "given back", 10);
            });
            std::raise(SIGTERM);
            std::raise(SIGTERM);
        },
        testing::ExitedWithCode(3), "given back");
}

TEST(AbortSignals, GiveTheSignalsBack) {
    {
        const AbortSignals signals;
    }
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        struct sigaction action{};
        EXPECT_EQ(sigaction(signal, nullptr, &action), 0);
        EXPECT_EQ(action.sa_handler, SIG_DFL);
    }
}

TEST(AbortSignals, LeaveASignalThatIsIgnored) {
    for (const int signal : {SIGINT, SIGHUP}) {
        std::signal(signal, SIG_IGN);
        {
            const AbortSignals signals;
            std::raise(signal);
            EXPECT_FALSE(AbortSignals::AbortRequested());
        }
        std::signal(signal, SIG_DFL);
    }
}

TEST(AbortSignals, AClosedTerminalAsksOnceHoweverOftenItSaysSo) {
    const AbortSignals signals;
    std::raise(SIGHUP);
    std::raise(SIGHUP);
    std::raise(SIGTERM);
    std::raise(SIGHUP);
    EXPECT_TRUE(AbortSignals::AbortRequested()) << "and the process lives";
}

TEST(AbortSignalsDeathTest, APersonMayEndAtOnceWhatAClosedTerminalAborted) {
    EXPECT_EXIT(
        {
            const AbortSignals signals;
            std::raise(SIGHUP);
            std::raise(SIGTERM);
            std::raise(SIGINT);
        },
        testing::ExitedWithCode(3), "");
}

}  // namespace
}  // namespace quillon
