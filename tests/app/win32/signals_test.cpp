#include "app/signals.h"

#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <initializer_list>
#include <thread>

#include "platform/windows/system_headers.h"

namespace quillon {
namespace {

/// Lets the system tell the process's handlers of an event, as it does for a console: in a thread
/// of its own, which is given back.
HANDLE Happens(DWORD event) {
    const auto routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine")));
    EXPECT_NE(routine, nullptr);
    return CreateThread(nullptr, 0, routine, reinterpret_cast<void*>(std::uintptr_t{event}), 0,
                        nullptr);
}

bool IsSoonAsked() {
    for (int i = 0; i < 200 && !AbortSignals::AbortRequested(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return AbortSignals::AbortRequested();
}

TEST(AbortSignalsOfConsoles, CtrlCAndCtrlBreakPressAbort) {
    for (const auto event : std::initializer_list<DWORD>{CTRL_C_EVENT, CTRL_BREAK_EVENT}) {
        const AbortSignals signals;
        EXPECT_FALSE(AbortSignals::AbortRequested());
        HANDLE const thread = Happens(event);
        EXPECT_TRUE(IsSoonAsked());
        EXPECT_EQ(WaitForSingleObject(thread, 5000), WAIT_OBJECT_0) << "and the process lives";
        CloseHandle(thread);
    }
}

/// The handler is not done before the run is, since the system ends the process then.
void ExpectTheRunsEndToBeWaitedFor(DWORD event) {
    EXPECT_EXIT(
        {
            {
                const AbortSignals signals;
                HANDLE const thread = Happens(event);
                if (!IsSoonAsked()) std::exit(1);
                if (WaitForSingleObject(thread, 300) != WAIT_TIMEOUT) std::exit(2);
            }
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(AbortSignalsOfConsolesDeathTest, AClosedConsoleWaitsForTheRunsEnd) {
    ExpectTheRunsEndToBeWaitedFor(CTRL_CLOSE_EVENT);
    ExpectTheRunsEndToBeWaitedFor(CTRL_LOGOFF_EVENT);
    ExpectTheRunsEndToBeWaitedFor(CTRL_SHUTDOWN_EVENT);
}

TEST(AbortSignalsOfConsolesDeathTest, TheSecondCtrlCEndsTheProcessAtOnce) {
    EXPECT_EXIT(
        {
            const AbortSignals signals;
            WaitForSingleObject(Happens(CTRL_C_EVENT), 5000);
            WaitForSingleObject(Happens(CTRL_C_EVENT), 5000);
        },
        testing::ExitedWithCode(3), "");
}

}  // namespace
}  // namespace quillon
