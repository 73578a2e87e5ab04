#pragma once

#include <chrono>
#include <deque>
#include <memory>
#include <string>

#include "app/views/view.h"

namespace quillon {

class CursesScreen;

/// The face on a terminal: the phases with the running one marked, the current item, the latest
/// error, the elapsed time. Key `a` is the Abort button. The screen is given back when the window
/// closes, whatever ends it.
class TerminalView : public View {
  public:
    /// nullptr where the terminal cannot show a screen.
    static std::unique_ptr<TerminalView> Make();
    ~TerminalView() override;

    void Show(const FormState& state) override;
    void ProcessEvents(const FormState& state) override;
    void LogWritten(LogKind kind, std::string_view source, std::string_view message) override;
    bool AbortPressed() const override;
    void Unload() override;
    void Summarize(const RunSummary& summary) override;

  private:
    using Clock = std::chrono::steady_clock;

    explicit TerminalView(std::unique_ptr<CursesScreen> screen);
    void Draw(const FormState& state, Clock::time_point now);

    std::unique_ptr<CursesScreen> screen_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point nextDraw_ = start_;
    bool abortKeyPressed_ = false;
    std::deque<std::string> latestRecords_;  ///< of the log, to be told when the screen is gone
};

}  // namespace quillon
