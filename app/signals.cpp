#include "app/signals.h"

#include <array>
#include <atomic>
#include <csignal>
#include <unistd.h>

namespace quillon {
namespace {

constexpr int AbortedStatus = 3;
constexpr std::array AbortingSignals{SIGINT, SIGTERM, SIGHUP};

// A signal handler receives no context, so what it shares with the program lives here.
std::atomic<bool> abortRequested{false};
std::atomic<bool> askedByPerson{false};
std::atomic<void (*)() noexcept> lastAct{nullptr};
static_assert(std::atomic<bool>::is_always_lock_free);
static_assert(std::atomic<void (*)() noexcept>::is_always_lock_free);

std::array<struct sigaction, AbortingSignals.size()> previousActions{};
struct sigaction previousPipeAction{};

extern "C" void OnAbortSignal(int signal) {
    abortRequested = true;
    // A terminal that closes says so more than once, through its shell as well, and the end of a
    // login sends SIGTERM with it. Neither is a person who has lost patience.
    if (signal == SIGHUP || !askedByPerson.exchange(true)) return;
    if (auto* const act = lastAct.load(); act != nullptr) act();
    _exit(AbortedStatus);
}

}  // namespace

AbortSignals::AbortSignals(BrokenPipe pipe) {
    abortRequested = false;
    askedByPerson = false;
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
    lastAct = nullptr;
}

bool AbortSignals::AbortRequested() noexcept {
    return abortRequested.load();
}

void AbortSignals::SetLastAct(void (*act)() noexcept) noexcept {
    lastAct = act;
}

}  // namespace quillon
