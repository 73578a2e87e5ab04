#include "app/views/view_choice.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <unistd.h>

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

std::vector<ViewKind> ViewsToTry(ViewKind asked, const Surroundings& surroundings) {
    if (asked != ViewKind::Auto) return {asked};
    if (surroundings.inputIsTerminal && surroundings.outputIsTerminal)
        return {ViewKind::Terminal, ViewKind::Plain};
    if (IsLaunchersChild(surroundings)) return {ViewKind::Window, ViewKind::Plain};
    return {ViewKind::Plain};
}

bool IsLaunchersChild(const Surroundings& surroundings) {
    // A shell on a desktop inherits the mark of what it was started from; its terminal tells that
    // this is no launcher's child.
    const bool terminal = surroundings.inputIsTerminal || surroundings.outputIsTerminal;
    return surroundings.display && surroundings.launched && !terminal;
}

}  // namespace quillon
