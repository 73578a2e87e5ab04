#pragma once

#include <memory>

#include "app/views/plain_view.h"
#include "app/views/view.h"

namespace quillon {

/// The view on a desktop. The summary goes, as plain lines, to the program that has started this
/// one: the window is gone when the run has ended.
class WindowView : public View {
  public:
    /// `window` is opened already; `descriptor` takes the lines and stays the caller's.
    WindowView(std::unique_ptr<Window> window, int descriptor)
        : window_(std::move(window)), lines_(descriptor) {}

    void Show(const FormState& state) override { window_->Show(state); }
    void ProcessEvents(const FormState& state) override { window_->ProcessEvents(state); }
    void LogWritten(LogKind kind, std::string_view source, std::string_view message) override;
    bool AbortPressed() const override;
    void Unload() override { window_->Unload(); }
    void Summarize(const RunSummary& summary) override { lines_.Summarize(summary); }

  private:
    std::unique_ptr<Window> window_;
    PlainView lines_;
};

}  // namespace quillon
