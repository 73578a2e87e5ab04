#include "app/views/terminal_capabilities.h"

// Capabilities are declared with the types of curses, so the order matters. They bring macros for
// quite usual names, which is why they are included nowhere else.
// clang-format off
#include <curses.h>
#include <term.h>
// clang-format on
#include <cstdint>
#include <string>

namespace quillon {
namespace {

/// A capability's text; empty where the terminal has none.
std::string Capability(const char* name) {
    const char* const text = tigetstr(name);
    // tigetstr answers -1 for a name that is no text capability.
    if (text == nullptr || reinterpret_cast<std::intptr_t>(text) == -1) return "";
    return text;
}

}  // namespace

bool TerminalPositionsCursor() {
    return !Capability("cup").empty();
}

std::string TerminalLeavingSequence() {
    std::string all;
    for (const char* const name : {"rmkx", "sgr0", "cnorm", "rmcup"}) {
        const std::string one = Capability(name);
        // Padding such as "$<5>" is for curses to interpret.
        if (one.find("$<") == std::string::npos) all += one;
    }
    return all;
}

}  // namespace quillon
