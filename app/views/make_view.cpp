#include "app/views/make_view.h"

#include <fmt/format.h>
#include <string>
#include <unistd.h>

#include "app/console.h"
#include "app/views/plain_view.h"
#include "app/views/terminal_screen.h"
#include "app/views/view_choice.h"
#include "app/views/window_module.h"
#include "app/views/window_view.h"

namespace quillon {
namespace {

/// A view, or why there is none.
struct Offer {
    std::unique_ptr<View> view;
    std::string whyNot;
};

Offer MakeTerminalView(const Surroundings& surroundings) {
    Offer offer{nullptr,
                "--view terminal: input and output are not a terminal that can show a screen; use "
                "plain"};
    if (surroundings.inputIsTerminal && surroundings.outputIsTerminal)
        offer.view = MakeTerminalScreen(offer.whyNot);
    return offer;
}

Offer MakeWindowView() {
    WindowOffer offer = OpenWindow();
    if (offer.window == nullptr)
        return {nullptr,
                fmt::format("--view window: {}; or use --view terminal or plain", offer.whyNot)};
    return {std::make_unique<WindowView>(std::move(offer.window), STDOUT_FILENO), ""};
}

Offer TryView(ViewKind kind, const Surroundings& surroundings, bool quiet) {
    if (kind == ViewKind::Window) return MakeWindowView();
    if (kind == ViewKind::Terminal) return MakeTerminalView(surroundings);
    return {std::make_unique<PlainView>(
                STDOUT_FILENO, quiet ? PlainDetail::ErrorsAndSummary : PlainDetail::Everything),
            ""};
}

}  // namespace

std::unique_ptr<View> MakeView(ViewKind kind, bool quiet) {
    const Surroundings surroundings = LookAround();
    Offer offer;
    for (const ViewKind candidate : ViewsToTry(kind, surroundings)) {
        offer = TryView(candidate, surroundings, quiet);
        if (offer.view != nullptr) return std::move(offer.view);
    }
    throw CommandError(offer.whyNot);
}

}  // namespace quillon
