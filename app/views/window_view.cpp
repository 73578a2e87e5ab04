#include "app/views/window_view.h"

#include "app/signals.h"

namespace quillon {

void WindowView::LogWritten(LogKind kind, std::string_view source, std::string_view message) {
    window_->LogWritten(kind, source, message);
}

bool WindowView::AbortPressed() const {
    return window_->AbortPressed() || AbortSignals::AbortRequested();
}

}  // namespace quillon
