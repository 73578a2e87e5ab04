// A console shows plain lines.
#include "app/views/terminal_screen.h"

namespace quillon {

std::unique_ptr<View> MakeTerminalScreen(std::string& whyNot) {
    whyNot = "--view terminal: there is no screen on a Windows console; use plain";
    return nullptr;
}

}  // namespace quillon
