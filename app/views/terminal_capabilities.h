#pragma once

#include <string>

/// What curses knows of the kind of terminal that it has been opened for.
namespace quillon {

/// Whether text can be put anywhere on the screen.
bool TerminalPositionsCursor();

/// Keypad mode off, attributes off, cursor visible, the other screen left.
std::string TerminalLeavingSequence();

}  // namespace quillon
