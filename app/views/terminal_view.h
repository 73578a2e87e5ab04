#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "app/views/key_presses.h"
#include "app/views/screen_layout.h"
#include "app/views/view.h"

namespace quillon {

class CursesScreen;

/// The view on a terminal: the phases with the running one marked and how far it has come, the
/// current item, the latest error, the elapsed time, the latest records of the log. Key `a` is the
/// Abort button. The screen is restored when the window closes, whatever ends it; then a few
/// lines tell what went away and sum up.
class TerminalView : public View {
  public:
    /// nullptr where the terminal cannot show a screen. It is taken when the window is shown.
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
    KeyPresses keys_;
    bool abortKeyPressed_ = false;
    ScreenRemarks remarks_;
    std::string latestError_;
};

}  // namespace quillon
