#include "app/views/plain_view.h"

#include <string>

#include "app/signals.h"
#include "app/text/display_text.h"

namespace quillon {

void PlainView::Show(const FormState& state) {
    if (!TellsEverything()) return;
    output_.WriteLine(std::string(FormCaption).append(", ").append(state.lblver));
    ProcessEvents(state);
}

void PlainView::ProcessEvents(const FormState& state) {
    if (!TellsEverything()) return;
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        const PhaseIndicator& phase = state.aPhase[i];
        if (phase.selected == selected_[i]) continue;
        selected_[i] = phase.selected;
        if (phase.selected) output_.WriteLine(phase.caption);
    }
}

void PlainView::LogWritten(LogKind kind, std::string_view source, std::string_view message) {
    if (!TellsEverything() && kind != LogKind::Error) return;
    output_.WriteLine("   " + OneLine(source) + ": " + OneLine(message));
}

bool PlainView::AbortPressed() const {
    return AbortSignals::AbortRequested();
}

void PlainView::Summarize(const RunSummary& summary) {
    for (const std::string& line : LossLines(summary))
        output_.WriteLine(line);
    output_.WriteLine(SummaryText(summary));
    output_.Finish();
}

}  // namespace quillon
