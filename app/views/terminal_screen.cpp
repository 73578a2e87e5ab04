#include "app/views/terminal_screen.h"

#include "app/views/terminal_view.h"

namespace quillon {

std::unique_ptr<View> MakeTerminalScreen(std::string& /*whyNot*/) {
    return TerminalView::Make();
}

}  // namespace quillon
