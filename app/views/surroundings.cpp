#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <unistd.h>

#include "app/views/view_choice.h"

namespace quillon {
namespace {

bool AnyIsSet(std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(), [](const char* name) {
        const char* const value = std::getenv(name);
        return value != nullptr && *value != '\0';
    });
}

}  // namespace

Surroundings LookAround() {
    return {.inputIsTerminal = isatty(STDIN_FILENO) != 0,
            .outputIsTerminal = isatty(STDOUT_FILENO) != 0,
            .display = AnyIsSet({"DISPLAY", "WAYLAND_DISPLAY"}),
            .launched = AnyIsSet(
                {"GIO_LAUNCHED_DESKTOP_FILE", "DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"})};
}

}  // namespace quillon
