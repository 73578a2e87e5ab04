// Ctrl-C, Ctrl-Break, and the console, the session or the system that closes.
#include "app/signals.h"

#include <atomic>

#include "app/abort_request.h"
#include "platform/windows/system_headers.h"

namespace quillon {
namespace {

/// The console, the session or the system closes. The handler runs in a thread of its own and
/// receives no context.
std::atomic<bool> closes{false};

BOOL WINAPI OnConsoleEvent(DWORD event) {
    const bool isEnd = event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT;
    if (isEnd) closes = true;
    RequestAbort();
    if (isEnd) {
        // The system ends the process when this returns, and some seconds from now anyway. Until
        // then the run gets to its end, and with it the process.
        Sleep(INFINITE);
    }
    if (HasLostPatience()) TerminateProcess(GetCurrentProcess(), AbortedStatus);
    return TRUE;
}

}  // namespace

AbortSignals::AbortSignals(BrokenPipe /*pipe*/) {
    ForgetAbortRequest();
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

AbortSignals::~AbortSignals() {
    // A handler that is at work may keep the list of handlers to itself.
    if (!closes) SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
    SetLastAct(nullptr);
}

}  // namespace quillon
