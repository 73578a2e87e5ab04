#include "app/win32/win32_window.h"

#include <algorithm>

namespace quillon {
namespace {

using std::chrono::milliseconds;

/// Drawing takes at most one part in so many of the run's time, beside what it may always take ...
constexpr int RunsShare = 50;
constexpr milliseconds AlwaysAllowed{10};
/// ... and happens no more often than a person can see, but often enough for a click to be heard at
/// once.
constexpr milliseconds ShortestInterval{34}, LongestInterval{250};

}  // namespace

Win32Window::Win32Window() : dialog_(std::make_unique<LibraryDialog>()) {}

void Win32Window::Show(const FormState& state) {
    if (dialog_ == nullptr) return;
    dialog_->Update(state, {});
    dialog_->Show();
    Draw(state, Clock::now());
}

void Win32Window::ProcessEvents(const FormState& state) {
    const Clock::time_point now = Clock::now();
    if (now >= nextDraw_) Draw(state, now);
}

void Win32Window::Draw(const FormState& state, Clock::time_point now) {
    if (dialog_ == nullptr) return;
    dialog_->Update(state, std::chrono::duration_cast<std::chrono::seconds>(now - start_));
    dialog_->ProcessEvents();
    const Clock::time_point end = Clock::now();
    spent_ += end - now;
    nextDraw_ = std::clamp(start_ + (spent_ - AlwaysAllowed) * RunsShare, end + ShortestInterval,
                           end + LongestInterval);
}

void Win32Window::LogWritten(LogKind kind, std::string_view source, std::string_view message) {
    if (dialog_ != nullptr && kind == LogKind::Error) dialog_->AddError(source, message);
}

bool Win32Window::AbortPressed() const {
    return abortPressed_ || (dialog_ != nullptr && dialog_->AbortPressed());
}

void Win32Window::Unload() {
    abortPressed_ = AbortPressed();
    dialog_.reset();
}

}  // namespace quillon
