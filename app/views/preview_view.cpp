#include "app/views/preview_view.h"

namespace quillon {

void PreviewView::NotePhases(const FormState& state) {
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        const PhaseIndicator& phase = state.aPhase[i];
        if (phase.selected == selected_[i]) continue;
        selected_[i] = phase.selected;
        if (!phase.selected) continue;
        if (!isModeNoted_) sink_.Note(ModeChosen{modeOf_()});
        isModeNoted_ = true;
        sink_.Note(PhaseStarted{std::string(phase.caption), Elapsed()});
    }
}

void PreviewView::LogWritten(LogKind kind, std::string_view, std::string_view message) {
    sink_.Note(LogLine{kind == LogKind::Error, std::string(message)});
}

std::chrono::milliseconds PreviewView::Elapsed() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start_);
}

}  // namespace quillon
