#pragma once

#include <bitset>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>

#include "changes/change.h"
#include "platform/window.h"

namespace quillon {

/// Makes records of what a run shows: the mode, phases, records of the log.
class RunStory {
  public:
    using Note = std::function<void(const ChangeRecord& record)>;
    /// What the run's mode is called; "" while it is not known.
    using ModeOf = std::function<std::string()>;
    RunStory(Note note, ModeOf modeOf) : note_(std::move(note)), modeOf_(std::move(modeOf)) {}

    void Look(const FormState& state);
    void LogWritten(LogKind kind, std::string_view message);

    /// Since this object was made.
    std::chrono::milliseconds Elapsed() const;

  private:
    Note note_;
    ModeOf modeOf_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::bitset<PhaseCount> selected_;
    bool isModeNoted_ = false;
};

}  // namespace quillon
