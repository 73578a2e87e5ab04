#pragma once

#include <cmath>
#include <string>

#include "tests/support/fake_window.h"

namespace quillon::fakes {

/// Notes how far a phase says it has come, each time that the window may draw it: "0/3 1/3 2/3"; a
/// "-" where the total is unknown. A share of the phase is named before what is counted in it:
/// "[50-100%] 0/3 1/3".
class ProgressWatch {
  public:
    explicit ProgressWatch(FakeWindow& window) {
        window.onEvents = [this](const FormState& state) { Note(state.progress); };
    }

    void Note(const PhaseProgress& progress) {
        std::string text = progress.total == 0 ? "-"
                                               : std::to_string(progress.done) + '/' +
                                                     std::to_string(progress.total);
        if (progress.from != from_ || progress.to != to_) {
            from_ = progress.from, to_ = progress.to;
            text = '[' + Percent(from_) + '-' + Percent(to_) + "%] " + text;
        }
        wentBack_ |= progress.Part() < part_;
        part_ = progress.Part();
        if (text == latest_) return;
        seen_ += (seen_.empty() ? "" : " ") + text;
        latest_ = std::move(text);
    }

    const std::string& Seen() const { return seen_; }
    /// Whether the phase ever seemed less done than before.
    bool WentBack() const { return wentBack_; }

  private:
    static std::string Percent(double part) { return std::to_string(std::lround(part * 100)); }

    std::string seen_, latest_;
    double from_ = 0, to_ = 1, part_ = 0;
    bool wentBack_ = false;
};

}  // namespace quillon::fakes
