#pragma once

#include <bitset>
#include <chrono>
#include <functional>
#include <string>

#include "changes/change.h"
#include "platform/window.h"

namespace quillon {

/// Shows nothing; tells a sink of the mode, the phases and the log's records.
class PreviewView : public Window {
  public:
    /// What the run's mode is called; "" while it is not known.
    using ModeOf = std::function<std::string()>;
    /// The sink must outlive this object.
    PreviewView(ChangeSink& sink, ModeOf modeOf) : sink_(sink), modeOf_(std::move(modeOf)) {}

    void Show(const FormState& state) override { NotePhases(state); }
    void ProcessEvents(const FormState& state) override { NotePhases(state); }
    void LogWritten(LogKind kind, std::string_view source, std::string_view message) override;
    bool AbortPressed() const override { return false; }
    void Unload() override {}

    /// Since this object was made.
    std::chrono::milliseconds Elapsed() const;

  private:
    void NotePhases(const FormState& state);

    ChangeSink& sink_;
    ModeOf modeOf_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::bitset<PhaseCount> selected_;
    bool isModeNoted_ = false;
};

}  // namespace quillon
