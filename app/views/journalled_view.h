#pragma once

#include <bitset>
#include <chrono>
#include <functional>
#include <string>

#include "app/journal/journal_file.h"
#include "app/views/view.h"

namespace quillon {

/// Another view, of which a journal is told what a run shows: the mode, phases, records of the log.
/// Where the journal takes nothing more, the Abort button counts as pressed.
class JournalledView : public View {
  public:
    /// What the run's mode is called; "" while it is not known. All must outlive this object.
    using ModeOf = std::function<std::string()>;
    JournalledView(View& view, JournalFile& journal, ModeOf modeOf)
        : view_(view), journal_(journal), modeOf_(std::move(modeOf)) {}

    void Show(const FormState& state) override;
    void ProcessEvents(const FormState& state) override;
    void LogWritten(LogKind kind, std::string_view source, std::string_view message) override;
    bool AbortPressed() const override;
    void Unload() override { view_.Unload(); }
    void Summarize(const RunSummary& summary) override { view_.Summarize(summary); }

    /// Since this object was made.
    std::chrono::milliseconds Elapsed() const;

  private:
    void NotePhases(const FormState& state);

    View& view_;
    JournalFile& journal_;
    ModeOf modeOf_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::bitset<PhaseCount> selected_;
    bool isModeNoted_ = false;
};

}  // namespace quillon
