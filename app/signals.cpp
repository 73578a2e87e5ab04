#include "app/signals.h"

#include <array>
#include <csignal>
#include <unistd.h>

#include "app/abort_request.h"

namespace quillon {
namespace {

constexpr std::array AbortingSignals{SIGINT, SIGTERM, SIGHUP};

std::array<struct sigaction, AbortingSignals.size()> previousActions{};
struct sigaction previousPipeAction{};

extern "C" void OnAbortSignal(int signal) {
    RequestAbort();
    // A terminal that closes says so more than once, through its shell as well, and the end of a
    // login sends SIGTERM with it. Neither is a person who has lost patience.
    if (signal != SIGHUP && HasLostPatience()) _exit(AbortedStatus);
}

}  // namespace

AbortSignals::AbortSignals(BrokenPipe pipe) {
    ForgetAbortRequest();
    for (std::size_t i = 0; i < AbortingSignals.size(); ++i) {
        sigaction(AbortingSignals.at(i), nullptr, &previousActions.at(i));
        // Who starts a job in the background may have had it ignore the keyboard; that stays so.
        if (previousActions.at(i).sa_handler == SIG_IGN) continue;
        struct sigaction action{};
        action.sa_handler = OnAbortSignal;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(AbortingSignals.at(i), &action, nullptr);
    }
    sigaction(SIGPIPE, nullptr, &previousPipeAction);
    if (pipe == BrokenPipe::EndsAsBefore) return;
    struct sigaction ignore{};
    ignore.sa_handler = SIG_IGN;
    sigemptyset(&ignore.sa_mask);
    sigaction(SIGPIPE, &ignore, nullptr);
}

AbortSignals::~AbortSignals() {
    for (std::size_t i = 0; i < AbortingSignals.size(); ++i)
        sigaction(AbortingSignals.at(i), &previousActions.at(i), nullptr);
    sigaction(SIGPIPE, &previousPipeAction, nullptr);
    SetLastAct(nullptr);
}

}  // namespace quillon
