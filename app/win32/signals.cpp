// Ctrl-C, Ctrl-Break, and the console, the session or the system that closes.
#include "app/signals.h"

#include <atomic>

#include "platform/windows/system_headers.h"

namespace quillon {
namespace {

constexpr UINT AbortedStatus = 3;

// A handler receives no context, so what it shares with the program lives here. It runs in a thread
// of its own.
std::atomic<bool> abortRequested{false};
std::atomic<bool> askedByPerson{false};
std::atomic<bool> closes{false};  ///< the console, the session or the system
std::atomic<void (*)() noexcept> lastAct{nullptr};

BOOL WINAPI OnConsoleEvent(DWORD event) {
    const bool isEnd = event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT;
    if (isEnd) closes = true;
    abortRequested = true;
    if (isEnd) {
        // The system ends the process when this returns, and some seconds from now anyway. Until
        // then the run gets to its end, and with it the process.
        Sleep(INFINITE);
    }
    if (!askedByPerson.exchange(true)) return TRUE;
    if (auto* const act = lastAct.load(); act != nullptr) act();
    TerminateProcess(GetCurrentProcess(), AbortedStatus);
    return TRUE;
}

}  // namespace

AbortSignals::AbortSignals(BrokenPipe /*pipe*/) {
    abortRequested = false;
    askedByPerson = false;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

AbortSignals::~AbortSignals() {
    // A handler that is at work may keep the list of handlers to itself.
    if (!closes) SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
    lastAct = nullptr;
}

bool AbortSignals::AbortRequested() noexcept {
    return abortRequested.load();
}

void AbortSignals::SetLastAct(void (*act)() noexcept) noexcept {
    lastAct = act;
}

}  // namespace quillon
