#include "app/views/journalled_view.h"

namespace quillon {

void JournalledView::Show(const FormState& state) {
    view_.Show(state);
    NotePhases(state);
}

void JournalledView::ProcessEvents(const FormState& state) {
    NotePhases(state);
    view_.ProcessEvents(state);
}

void JournalledView::NotePhases(const FormState& state) {
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        const PhaseIndicator& phase = state.aPhase[i];
        if (phase.selected == selected_[i]) continue;
        selected_[i] = phase.selected;
        if (!phase.selected) continue;
        if (!isModeNoted_) journal_.Remark(ModeChosen{modeOf_()});
        isModeNoted_ = true;
        journal_.Remark(PhaseStarted{std::string(phase.caption), Elapsed()});
    }
}

void JournalledView::LogWritten(LogKind kind, std::string_view source, std::string_view message) {
    journal_.Remark(LogLine{kind == LogKind::Error, std::string(message)});
    view_.LogWritten(kind, source, message);
}

bool JournalledView::AbortPressed() const {
    return view_.AbortPressed() || !journal_.Trouble().empty();
}

std::chrono::milliseconds JournalledView::Elapsed() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start_);
}

}  // namespace quillon
