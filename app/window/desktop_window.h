#pragma once

#include <QApplication>
#include <chrono>
#include <memory>
#include <string>

#include "app/window/library_window.h"
#include "platform/window.h"

namespace quillon {

/// The run's window on a desktop. It draws and takes input only inside the calls that the run
/// makes, seldom enough for the run not to be slowed by it.
class DesktopWindow : public Window {
  public:
    DesktopWindow();
    ~DesktopWindow() override;

    void Show(const FormState& state) override;
    void ProcessEvents(const FormState& state) override;
    void LogWritten(LogKind kind, std::string_view source, std::string_view message) override;
    bool AbortPressed() const override;
    void Unload() override;

  private:
    using Clock = std::chrono::steady_clock;

    void OpenDisplay();
    void Close();
    void Draw(const FormState& state, Clock::time_point now);
    bool DisplayIsLost() const;

    // What a QApplication is given must outlive it.
    std::string programName_ = "quillon";
    char* arguments_[2] = {programName_.data(), nullptr};
    int argumentCount_ = 1;
    std::unique_ptr<QApplication> application_;
    std::unique_ptr<LibraryWindow> window_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point nextDraw_ = start_;
    Clock::duration spent_{};    ///< on drawing, so far
    bool abortPressed_ = false;  ///< kept when the window, which knows it, is gone
};

}  // namespace quillon
