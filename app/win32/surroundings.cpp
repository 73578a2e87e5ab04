#include <array>
#include <io.h>

#include "app/views/view_choice.h"
#include "platform/windows/system_headers.h"

namespace quillon {
namespace {

/// Whether the console was made for this program: it was started by no shell, but by the host, a
/// shortcut or the desktop.
bool HasConsoleOfItsOwn() {
    std::array<DWORD, 2> processes{};
    const DWORD count =
        GetConsoleProcessList(processes.data(), static_cast<DWORD>(processes.size()));
    return count == 1;
}

}  // namespace

Surroundings LookAround() {
    const bool launched = GetConsoleWindow() == nullptr || HasConsoleOfItsOwn();
    return {.inputIsTerminal = !launched && _isatty(0) != 0,
            .outputIsTerminal = !launched && _isatty(1) != 0,
            .display = true,
            .launched = launched && (_isatty(1) != 0 || _get_osfhandle(1) < 0)};
}

}  // namespace quillon
