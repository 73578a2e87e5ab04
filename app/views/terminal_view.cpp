#include "app/views/terminal_view.h"

#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "app/signals.h"
#include "app/text/display_text.h"
#include "app/views/curses_screen.h"
#include "app/views/line_output.h"

namespace quillon {
namespace {

constexpr std::chrono::milliseconds DrawInterval{34};
constexpr std::size_t MostRecords = 200;
constexpr ScreenSize UsualSize{.columns = 80, .rows = 24};
/// What the summary leaves of the screen to what stood there before, the prompt behind it included.
constexpr std::size_t RowsForOthers = 3;

ScreenSize SizeOfOutput() {
    winsize size{};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? ScreenSize{.columns = size.ws_col, .rows = size.ws_row} : UsualSize;
}

}  // namespace

std::unique_ptr<TerminalView> TerminalView::Make() {
    std::unique_ptr<CursesScreen> screen = CursesScreen::Open();
    if (screen == nullptr) return nullptr;
    return std::unique_ptr<TerminalView>(new TerminalView(std::move(screen)));
}

TerminalView::TerminalView(std::unique_ptr<CursesScreen> screen) : screen_(std::move(screen)) {}

TerminalView::~TerminalView() = default;

void TerminalView::Show(const FormState& state) {
    if (screen_ != nullptr) Draw(state, Clock::now());
}

void TerminalView::ProcessEvents(const FormState& state) {
    const Clock::time_point now = Clock::now();
    if (now < nextDraw_ || screen_ == nullptr) return;
    if (keys_.Typed(screen_->ReadInput()).find_first_of("aA") != std::string::npos)
        abortKeyPressed_ = true;
    Draw(state, now);
}

void TerminalView::Draw(const FormState& state, Clock::time_point now) {
    remarks_.elapsed = std::chrono::duration_cast<std::chrono::seconds>(now - start_);
    remarks_.aborting = AbortPressed();
    screen_->Draw(LayOutScreen(state, remarks_, screen_->Size()));
    // Counted from the end of drawing: a slow line gets no more than its share of the time.
    nextDraw_ = Clock::now() + DrawInterval;
}

void TerminalView::LogWritten(LogKind kind, std::string_view /*source*/, std::string_view message) {
    remarks_.records.push_back({kind, OneLine(message)});
    if (remarks_.records.size() > MostRecords) remarks_.records.pop_front();
    if (kind != LogKind::Error) return;
    ++remarks_.errors;
    latestError_ = remarks_.records.back().text;
}

bool TerminalView::AbortPressed() const {
    return abortKeyPressed_ || AbortSignals::AbortRequested();
}

void TerminalView::Unload() {
    screen_.reset();
}

void TerminalView::Summarize(const RunSummary& summary) {
    Unload();
    std::string record = latestError_;
    // A run that did not begin says why in a record that need not be an error.
    if (record.empty() && summary.outcome == RunOutcome::NothingRan && !remarks_.records.empty())
        record = remarks_.records.back().text;
    LineOutput output(STDOUT_FILENO);
    const ScreenSize size = SizeOfOutput();
    const std::vector<std::string> lines = SummaryLines(summary, record, size.columns);
    const std::size_t taken = lines.size() + RowsForOthers;
    const std::size_t room = size.rows > taken ? size.rows - taken : 0;
    for (const std::string& line : LossLines(summary, size.columns, room))
        output.WriteLine(line);
    for (const std::string& line : lines)
        output.WriteLine(line);
    output.Finish();
}

}  // namespace quillon
