#pragma once

#include <chrono>
#include <memory>

#include "app/win32/library_dialog.h"
#include "platform/window.h"

namespace quillon {

/// The run's window on a Windows desktop. It draws and takes input only inside the calls that the
/// run makes, seldom enough for the run not to be slowed by it.
class Win32Window : public Window {
  public:
    Win32Window();

    void Show(const FormState& state) override;
    void ProcessEvents(const FormState& state) override;
    void LogWritten(LogKind kind, std::string_view source, std::string_view message) override;
    bool AbortPressed() const override;
    void Unload() override;

  private:
    using Clock = std::chrono::steady_clock;

    void Draw(const FormState& state, Clock::time_point now);

    std::unique_ptr<LibraryDialog> dialog_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point nextDraw_ = start_;
    Clock::duration spent_{};    ///< on drawing, so far
    bool abortPressed_ = false;  ///< kept when the dialog, which knows it, is gone
};

}  // namespace quillon
