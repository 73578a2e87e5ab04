#include "app/views/terminal_view.h"

#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include "app/display_text.h"
#include "app/signals.h"
#include "app/views/curses_screen.h"
#include "app/views/line_output.h"
#include "app/views/screen_layout.h"

namespace quillon {
namespace {

constexpr std::chrono::milliseconds DrawInterval{34};
constexpr std::size_t MostRecordsTold = 10;

}  // namespace

std::unique_ptr<TerminalView> TerminalView::Make() {
    std::unique_ptr<CursesScreen> screen = CursesScreen::Open();
    if (screen == nullptr) return nullptr;
    return std::unique_ptr<TerminalView>(new TerminalView(std::move(screen)));
}

TerminalView::TerminalView(std::unique_ptr<CursesScreen> screen) : screen_(std::move(screen)) {}

TerminalView::~TerminalView() = default;

void TerminalView::Show(const FormState& state) {
    Draw(state, Clock::now());
}

void TerminalView::ProcessEvents(const FormState& state) {
    const Clock::time_point now = Clock::now();
    if (now < nextDraw_ || screen_ == nullptr) return;
    while (const std::optional<char> key = screen_->ReadKey())
        abortKeyPressed_ = abortKeyPressed_ || *key == 'a' || *key == 'A';
    Draw(state, now);
}

void TerminalView::Draw(const FormState& state, Clock::time_point now) {
    if (screen_ == nullptr) return;
    const auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(now - start_);
    screen_->Draw(LayOutScreen(state, elapsed, AbortPressed(), screen_->Size()));
    // Counted from the end of drawing: a slow line gets no more than its share of the time.
    nextDraw_ = Clock::now() + DrawInterval;
}

void TerminalView::LogWritten(LogKind /*kind*/, std::string_view source, std::string_view message) {
    latestRecords_.push_back(OneLine(source) + ": " + OneLine(message));
    if (latestRecords_.size() > MostRecordsTold) latestRecords_.pop_front();
}

bool TerminalView::AbortPressed() const {
    return abortKeyPressed_ || AbortSignals::AbortRequested();
}

void TerminalView::Unload() {
    screen_.reset();
}

void TerminalView::Summarize(const RunSummary& summary) {
    Unload();
    LineOutput output(STDOUT_FILENO);
    for (const std::string& record : latestRecords_)
        output.WriteLine(record);
    output.WriteLine(SummaryText(summary));
    output.Finish();
}

}  // namespace quillon
