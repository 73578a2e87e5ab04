#pragma once

#include <string_view>
#include <utility>

#include "app/views/run_story.h"

namespace quillon {

/// Shows nothing; tells a sink what a run would show.
class PreviewView : public Window {
  public:
    /// The sink must outlive this object.
    PreviewView(ChangeSink& sink, RunStory::ModeOf modeOf)
        : story_([&sink](const ChangeRecord& record) { sink.Note(record); }, std::move(modeOf)) {}

    void Show(const FormState& state) override { story_.Look(state); }
    void ProcessEvents(const FormState& state) override { story_.Look(state); }
    void LogWritten(LogKind kind, std::string_view, std::string_view message) override {
        story_.LogWritten(kind, message);
    }
    bool AbortPressed() const override { return false; }
    void Unload() override {}

    std::chrono::milliseconds Elapsed() const { return story_.Elapsed(); }

  private:
    RunStory story_;
};

}  // namespace quillon
