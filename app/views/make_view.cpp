#include "app/views/make_view.h"

#include <unistd.h>

#include "app/console.h"
#include "app/views/plain_view.h"
#include "app/views/terminal_view.h"

namespace quillon {
namespace {

std::unique_ptr<View> MakeTerminalView() {
    if (isatty(STDIN_FILENO) == 0 || isatty(STDOUT_FILENO) == 0) return nullptr;
    return TerminalView::Make();
}

}  // namespace

std::unique_ptr<View> MakeView(ViewKind kind, bool quiet) {
    switch (kind) {
        case ViewKind::Window:
            throw CommandError(
                "--view window: this build has no desktop window; use terminal or plain");
        case ViewKind::Terminal:
            if (auto view = MakeTerminalView()) return view;
            throw CommandError(
                "--view terminal: input and output are no terminal that can show a screen; use "
                "plain");
        case ViewKind::Auto:
            if (auto view = MakeTerminalView()) return view;
            break;
        case ViewKind::Plain:
            break;
    }
    return std::make_unique<PlainView>(
        STDOUT_FILENO, quiet ? PlainDetail::ErrorsAndSummary : PlainDetail::Everything);
}

}  // namespace quillon
