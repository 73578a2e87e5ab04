#pragma once

#include <chrono>
#include <string_view>
#include <utility>

#include "app/journal/journal_file.h"
#include "app/views/run_story.h"
#include "app/views/view.h"

namespace quillon {

/// Another view, of which a journal is told what a run shows. Where the journal takes nothing more,
/// the Abort button counts as pressed.
class JournalledView : public View {
  public:
    /// All must outlive this object.
    JournalledView(View& view, JournalFile& journal, RunStory::ModeOf modeOf)
        : view_(view),
          journal_(journal),
          story_([&journal](const ChangeRecord& record) { journal.Remark(record); },
                 std::move(modeOf)) {}

    void Show(const FormState& state) override {
        view_.Show(state);
        story_.Look(state);
    }
    void ProcessEvents(const FormState& state) override {
        story_.Look(state);
        view_.ProcessEvents(state);
    }
    void LogWritten(LogKind kind, std::string_view source, std::string_view message) override {
        story_.LogWritten(kind, message);
        view_.LogWritten(kind, source, message);
    }
    bool AbortPressed() const override {
        return view_.AbortPressed() || !journal_.Trouble().empty();
    }
    void Unload() override { view_.Unload(); }
    void Summarize(const RunSummary& summary) override { view_.Summarize(summary); }

    std::chrono::milliseconds Elapsed() const { return story_.Elapsed(); }

  private:
    View& view_;
    JournalFile& journal_;
    RunStory story_;
};

}  // namespace quillon
