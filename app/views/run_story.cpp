#include "app/views/run_story.h"

namespace quillon {

void RunStory::Look(const FormState& state) {
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        const PhaseIndicator& phase = state.aPhase[i];
        if (phase.selected == selected_[i]) continue;
        selected_[i] = phase.selected;
        if (!phase.selected) continue;
        if (!isModeNoted_) note_(ModeChosen{modeOf_()});
        isModeNoted_ = true;
        note_(PhaseStarted{std::string(phase.caption), Elapsed()});
    }
}

void RunStory::LogWritten(LogKind kind, std::string_view message) {
    note_(LogLine{kind == LogKind::Error, std::string(message)});
}

std::chrono::milliseconds RunStory::Elapsed() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start_);
}

}  // namespace quillon
