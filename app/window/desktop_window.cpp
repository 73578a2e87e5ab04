#include "app/window/desktop_window.h"

#include <algorithm>
#include <xcb/xcb.h>

namespace quillon {
namespace {

using std::chrono::milliseconds;

/// Drawing takes at most one part in so many of the run's time, beside what it may always take ...
constexpr int RunsShare = 50;
constexpr milliseconds AlwaysAllowed{100};
/// ... and happens no more often than a person can see, but often enough for a click to be heard at
/// once.
constexpr milliseconds ShortestInterval{34}, LongestInterval{250};

}  // namespace

DesktopWindow::DesktopWindow()
    : application_(std::make_unique<QApplication>(argumentCount_, arguments_)),
      window_(std::make_unique<LibraryWindow>()) {
    QApplication::setQuitOnLastWindowClosed(false);
}

DesktopWindow::~DesktopWindow() {
    Unload();
}

void DesktopWindow::Show(const FormState& state) {
    if (window_ == nullptr) return;
    window_->Update(state, {});
    window_->show();
    Draw(state, Clock::now());
}

void DesktopWindow::ProcessEvents(const FormState& state) {
    const Clock::time_point now = Clock::now();
    if (now >= nextDraw_) Draw(state, now);
}

void DesktopWindow::Draw(const FormState& state, Clock::time_point now) {
    if (window_ == nullptr) return;
    if (DisplayIsLost()) {
        Unload();
        return;
    }
    window_->Update(state, std::chrono::duration_cast<std::chrono::seconds>(now - start_));
    QApplication::processEvents();
    const Clock::time_point end = Clock::now();
    spent_ += end - now;
    nextDraw_ = std::clamp(start_ + (spent_ - AlwaysAllowed) * RunsShare, end + ShortestInterval,
                           end + LongestInterval);
}

/// Whether the X server has gone. Qt would end the process then, in the middle of the run and
/// without a word; to stop as for Abort leaves everything in order.
bool DesktopWindow::DisplayIsLost() const {
    const auto* const x11 = application_->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* const connection = x11 == nullptr ? nullptr : x11->connection();
    return connection != nullptr && xcb_connection_has_error(connection) != 0;
}

void DesktopWindow::LogWritten(LogKind kind, std::string_view source, std::string_view message) {
    if (window_ != nullptr && kind == LogKind::Error) window_->AddError(source, message);
}

bool DesktopWindow::AbortPressed() const {
    return abortPressed_ || (window_ != nullptr && window_->AbortPressed());
}

void DesktopWindow::Unload() {
    if (window_ == nullptr) return;
    abortPressed_ = AbortPressed();
    if (DisplayIsLost()) {
        abortPressed_ = true;
        // To be told so by the display would end the process; there is nothing left to tidy up.
        [[maybe_unused]] const auto* const window = window_.release();
        [[maybe_unused]] const auto* const application = application_.release();
        return;
    }
    window_.reset();
    application_.reset();
}

}  // namespace quillon
