#pragma once

#include <bitset>

#include "app/views/line_output.h"
#include "app/views/view.h"

namespace quillon {

/// The face for cron and logs: a line for each phase that starts and for each log record, and one
/// that sums up.
class PlainView : public View {
  public:
    /// Writes to this file descriptor, which stays the caller's.
    explicit PlainView(int descriptor) : output_(descriptor) {}

    void Show(const FormState& state) override;
    void ProcessEvents(const FormState& state) override;
    void LogWritten(LogKind kind, std::string_view source, std::string_view message) override;
    bool AbortPressed() const override;
    void Unload() override {}
    void Summarize(const RunSummary& summary) override;

  private:
    LineOutput output_;
    std::bitset<PhaseCount> selected_;
};

}  // namespace quillon
