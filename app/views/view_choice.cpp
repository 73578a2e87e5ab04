#include "app/views/view_choice.h"

namespace quillon {
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
