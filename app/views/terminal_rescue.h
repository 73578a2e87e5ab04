#pragma once

#include <csignal>
#include <string_view>

namespace quillon {

/// The modes of the terminal on the standard input, and what brings it back from a screen. While
/// the terminal is taken it is restored, from inside a signal handler if need be, by whatever
/// suspends or ends the process: Ctrl-Z, a crash, a second abort signal. One object at a time.
class TerminalRescue {
  public:
    /// Remembers the modes. To be made before anything else changes them or handles SIGTSTP.
    TerminalRescue();
    /// Gives the modes and the signals back.
    ~TerminalRescue();
    TerminalRescue(const TerminalRescue&) = delete;
    TerminalRescue& operator=(const TerminalRescue&) = delete;

    /// What is written to the descriptor, after the screen's last output, to leave the screen. At
    /// most 256 bytes of it are kept.
    void LeaveScreenWith(int descriptor, std::string_view sequence);

    /// Keys arrive one by one and are not shown, Ctrl-S does not stop the output, and what is
    /// written reaches the terminal as it is.
    void Take();

    /// False before Take() and again after the process was suspended.
    bool Taken() const;

    /// Whether the terminal is this process's to use: a job in the background leaves it alone.
    bool InForeground() const;

    /// The modes as they were; the screen has been left by other means.
    void GiveModesBack();
};

/// While an object lives Ctrl-Z waits, so that a picture is not left half drawn: the rest of it
/// would come out when the process goes on in the background.
class SuspensionDelay {
  public:
    SuspensionDelay();
    ~SuspensionDelay();
    SuspensionDelay(const SuspensionDelay&) = delete;
    SuspensionDelay& operator=(const SuspensionDelay&) = delete;

  private:
    sigset_t before_{};
};

}  // namespace quillon
