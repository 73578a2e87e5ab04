#include "app/views/terminal_rescue.h"

// Capabilities are declared with the types of curses, so the order matters.
// clang-format off
#include <curses.h>
#include <term.h>
// clang-format on
#include <array>
#include <cstdint>
#include <string_view>
#include <termios.h>
#include <unistd.h>

#include "app/signals.h"

namespace quillon {
namespace {

// A signal handler can use neither curses nor the heap, and it receives no context: what it needs
// is prepared here.
struct PreparedReturn {
    std::array<char, 256> sequence{};
    std::size_t size = 0;
    termios modes{};
    bool hasModes = false;
};
PreparedReturn preparedReturn;

void Append(const char* capability) {
    const char* const text = tigetstr(capability);
    // tigetstr answers -1 for a name that is no text capability.
    if (text == nullptr || reinterpret_cast<std::intptr_t>(text) == -1) return;
    const std::string_view sequence(text);
    // Padding such as "$<5>" is for curses to interpret.
    if (sequence.find("$<") != std::string_view::npos) return;
    if (preparedReturn.size + sequence.size() > preparedReturn.sequence.size()) return;
    sequence.copy(preparedReturn.sequence.data() + preparedReturn.size, sequence.size());
    preparedReturn.size += sequence.size();
}

void GiveTerminalBack() noexcept {
    // Nothing can be done about a terminal that does not take it.
    [[maybe_unused]] const ssize_t written =
        write(STDOUT_FILENO, preparedReturn.sequence.data(), preparedReturn.size);
    if (preparedReturn.hasModes) tcsetattr(STDIN_FILENO, TCSANOW, &preparedReturn.modes);
}

}  // namespace

TerminalRescue::TerminalRescue() {
    preparedReturn = {};
    preparedReturn.hasModes = tcgetattr(STDIN_FILENO, &preparedReturn.modes) == 0;
}

TerminalRescue::~TerminalRescue() {
    AbortSignals::SetLastAct(nullptr);
}

void TerminalRescue::Arm() {
    // Keypad mode off, attributes off, cursor visible, the other screen left.
    for (const char* const capability : {"rmkx", "sgr0", "cnorm", "rmcup"})
        Append(capability);
    AbortSignals::SetLastAct(GiveTerminalBack);
}

}  // namespace quillon
