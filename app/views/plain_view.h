#pragma once

#include <bitset>

#include "app/views/line_output.h"
#include "app/views/view.h"

namespace quillon {

/// How much plain lines tell: all that happens, or what a person has to know of.
enum class PlainDetail { Everything, ErrorsAndSummary };

/// The view for cron and logs: a line for each phase that starts and for each log record, what went
/// away, and a line that sums up.
class PlainView : public View {
  public:
    /// Writes to this file descriptor, which stays the caller's.
    explicit PlainView(int descriptor, PlainDetail detail = PlainDetail::Everything)
        : output_(descriptor), detail_(detail) {}

    void Show(const FormState& state) override;
    void ProcessEvents(const FormState& state) override;
    void LogWritten(LogKind kind, std::string_view source, std::string_view message) override;
    bool AbortPressed() const override;
    void Unload() override {}
    void Summarize(const RunSummary& summary) override;

  private:
    bool TellsEverything() const { return detail_ == PlainDetail::Everything; }

    LineOutput output_;
    PlainDetail detail_;
    std::bitset<PhaseCount> selected_;
};

}  // namespace quillon
