#pragma once

#include <string>

#include "tests/support/fake_window.h"

namespace quillon::fakes {

/// Notes how far a phase says it has come, each time that the window may draw it: "0/3 1/3 2/3"; a
/// "-" where the total is unknown.
class ProgressWatch {
  public:
    explicit ProgressWatch(FakeWindow& window) {
        window.onEvents = [this](const FormState& state) { Note(state.progress); };
    }

    void Note(const PhaseProgress& progress) {
        std::string text = progress.total == 0 ? "-"
                                               : std::to_string(progress.done) + '/' +
                                                     std::to_string(progress.total);
        if (text == latest_) return;
        seen_ += (seen_.empty() ? "" : " ") + text;
        latest_ = std::move(text);
    }

    const std::string& Seen() const { return seen_; }

  private:
    std::string seen_, latest_;
};

}  // namespace quillon::fakes
