#pragma once

namespace quillon {

/// Remembers how the terminal of this process is set and what brings it back from a screen, and has
/// a signal that ends the process at once do so. To be made before the screen is opened, armed when
/// it is open, and destroyed when it is closed. One object at a time.
class TerminalRescue {
  public:
    TerminalRescue();
    ~TerminalRescue();
    TerminalRescue(const TerminalRescue&) = delete;
    TerminalRescue& operator=(const TerminalRescue&) = delete;

    /// The terminal's kind is known from here on.
    void Arm();
};

}  // namespace quillon
