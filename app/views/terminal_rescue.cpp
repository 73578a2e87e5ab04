#include "app/views/terminal_rescue.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <termios.h>
#include <unistd.h>

#include "app/signals.h"

namespace quillon {
namespace {

constexpr std::array RescuingSignals{SIGTSTP, SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL};

// A signal handler can use neither curses nor the heap, and it receives no context: what it needs
// is prepared here.
struct PreparedReturn {
    int descriptor = -1;
    std::array<char, 256> sequence{};
    std::size_t size = 0;
    termios modes{};
    bool hasModes = false;
};
PreparedReturn preparedReturn;
std::atomic<bool> isTerminalTaken{false};
static_assert(std::atomic<bool>::is_always_lock_free);
std::array<struct sigaction, RescuingSignals.size()> actionsBefore{};

void SetModes(const termios& modes) noexcept {
    tcsetattr(STDIN_FILENO, TCSANOW, &modes);
}

void GiveTerminalBack() noexcept {
    if (!isTerminalTaken.exchange(false)) return;
    // Nothing can be done about a terminal that does not take it.
    [[maybe_unused]] const ssize_t written =
        write(preparedReturn.descriptor, preparedReturn.sequence.data(), preparedReturn.size);
    if (preparedReturn.hasModes) SetModes(preparedReturn.modes);
}

extern "C" void OnRescuingSignal(int signal);

void Handle(int signal) noexcept {
    struct sigaction action{};
    action.sa_handler = OnRescuingSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

/// Gives the terminal back and lets the signal do what it does without a handler. A suspended
/// process returns from here when it is continued; the next drawing takes the terminal again.
extern "C" void OnRescuingSignal(int signal) {
    const int error = errno;
    GiveTerminalBack();
    struct sigaction usual{};
    usual.sa_handler = SIG_DFL;
    sigemptyset(&usual.sa_mask);
    sigaction(signal, &usual, nullptr);
    sigset_t one{};
    sigemptyset(&one);
    sigaddset(&one, signal);
    raise(signal);
    pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
    Handle(signal);
    errno = error;
}

}  // namespace

TerminalRescue::TerminalRescue() {
    preparedReturn = {};
    preparedReturn.hasModes = tcgetattr(STDIN_FILENO, &preparedReturn.modes) == 0;
    isTerminalTaken = false;
    for (std::size_t i = 0; i < RescuingSignals.size(); ++i) {
        struct sigaction& previous = actionsBefore.at(i);
        sigaction(RescuingSignals.at(i), nullptr, &previous);
        if (previous.sa_handler == SIG_DFL) Handle(RescuingSignals.at(i));
    }
    AbortSignals::SetLastAct(GiveTerminalBack);
}

TerminalRescue::~TerminalRescue() {
    GiveModesBack();
    AbortSignals::SetLastAct(nullptr);
    for (std::size_t i = 0; i < RescuingSignals.size(); ++i)
        sigaction(RescuingSignals.at(i), &actionsBefore.at(i), nullptr);
}

void TerminalRescue::LeaveScreenWith(int descriptor, std::string_view sequence) {
    preparedReturn.descriptor = descriptor;
    preparedReturn.size =
        sequence.copy(preparedReturn.sequence.data(), preparedReturn.sequence.size());
}

void TerminalRescue::Take() {
    isTerminalTaken = true;
    if (!preparedReturn.hasModes) return;
    termios modes = preparedReturn.modes;
    modes.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | IEXTEN);
    modes.c_iflag &= ~static_cast<tcflag_t>(IXON);
    // Curses knows which cursor movement is which only where no line feed becomes two of them.
    modes.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    modes.c_cc[VMIN] = 0;
    modes.c_cc[VTIME] = 0;
    SetModes(modes);
}

bool TerminalRescue::Taken() const {
    return isTerminalTaken;
}

bool TerminalRescue::InForeground() const {
    const pid_t group = tcgetpgrp(STDIN_FILENO);
    // One that is not the controlling terminal has no foreground.
    return group < 0 || group == getpgrp();
}

void TerminalRescue::GiveModesBack() {
    if (isTerminalTaken.exchange(false) && preparedReturn.hasModes) SetModes(preparedReturn.modes);
}

SuspensionDelay::SuspensionDelay() {
    sigset_t suspension{};
    sigemptyset(&suspension);
    sigaddset(&suspension, SIGTSTP);
    pthread_sigmask(SIG_BLOCK, &suspension, &before_);
}

SuspensionDelay::~SuspensionDelay() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace quillon
