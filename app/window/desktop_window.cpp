#include "app/window/desktop_window.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <unistd.h>
#include <xcb/xcb.h>

#include "app/window/vector_registers.h"

namespace quillon {
namespace {

using std::chrono::milliseconds;

/// Drawing takes at most one part in so many of the run's time, beside what it may always take ...
constexpr int RunsShare = 200;
constexpr milliseconds AlwaysAllowed{10};
/// ... and happens no more often than a person can see, but often enough for a click to be heard at
/// once.
constexpr milliseconds ShortestInterval{34}, LongestInterval{250};

/// What a run that was aborted ends with.
constexpr int AbortedStatus = 3;

// What runs at a process's end receives no context, so what it has to know lives here.
bool qtIsAtWork = false;

/// Qt ends the process when the display disappears while it draws. What that leaves is what a
/// second Abort signal leaves, a whole database, and the next run puts the rest right; so the
/// status is the same.
extern "C" void EndAsAborted() {
    if (qtIsAtWork) _exit(AbortedStatus);
}

}  // namespace

DesktopWindow::DesktopWindow() {
    OpenDisplay();
    window_ = std::make_unique<LibraryWindow>();
    [[maybe_unused]] static const int registered = std::atexit(EndAsAborted);
}

void DesktopWindow::OpenDisplay() {
    // Qt takes over the person's locale for the whole process. The run reads and writes numbers for
    // files, which must look the same in every view.
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    application_ = std::make_unique<QApplication>(argumentCount_, arguments_);
    std::setlocale(LC_ALL, locale.c_str());
    QApplication::setQuitOnLastWindowClosed(false);
}

DesktopWindow::~DesktopWindow() {
    Close();
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
        Close();
        return;
    }
    qtIsAtWork = true;
    window_->Update(state, std::chrono::duration_cast<std::chrono::seconds>(now - start_));
    QApplication::processEvents();
    qtIsAtWork = false;
    FreeVectorRegisters();
    const Clock::time_point end = Clock::now();
    spent_ += end - now;
    nextDraw_ = std::clamp(start_ + (spent_ - AlwaysAllowed) * RunsShare, end + ShortestInterval,
                           end + LongestInterval);
}

/// Whether the X server has gone. To stop as for Abort leaves everything in order.
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
    Close();
}

void DesktopWindow::Close() {
    if (window_ == nullptr) return;
    abortPressed_ = abortPressed_ || window_->AbortPressed();
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
