#include "app/views/screen_layout.h"

#include <algorithm>
#include <string_view>

#include "app/display_text.h"

namespace quillon {
namespace {

/// Two texts at the ends of one line. The right one gives way where both do not fit.
std::string Spread(std::string_view left, std::string_view right, std::size_t columns) {
    const std::size_t taken = DisplayColumns(left) + DisplayColumns(right);
    if (taken + 2 > columns) return FitColumns(left, columns);
    return std::string(left).append(columns - taken, ' ').append(right);
}

std::vector<ScreenLine> PhaseLines(const FormState& state, std::size_t columns) {
    std::vector<ScreenLine> lines;
    for (const PhaseIndicator& phase : state.aPhase) {
        if (!phase.visible) continue;
        const std::string marker = phase.selected ? " (*) " : " ( ) ";
        lines.push_back({FitColumns(marker + std::string(phase.caption), columns), phase.selected});
    }
    return lines;
}

/// Takes away what does not fit, so that the last selected line and what comes next stay.
void KeepAroundSelected(std::vector<ScreenLine>& lines, std::size_t room) {
    if (lines.size() <= room) return;
    const auto selected = std::find_if(lines.rbegin(), lines.rend(),
                                       [](const ScreenLine& line) { return line.emphasized; });
    const std::size_t position =
        selected == lines.rend() ? 0 : static_cast<std::size_t>(lines.rend() - selected) - 1;
    const std::size_t first =
        std::min(position - std::min(position, room / 2), lines.size() - room);
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(first));
    lines.resize(room);
}

}  // namespace

std::vector<ScreenLine> LayOutScreen(const FormState& state, std::chrono::seconds elapsed,
                                     bool abortPressed, ScreenSize size) {
    const auto field = [&size](std::string_view caption, std::string_view text) {
        return ScreenLine{FitColumns(std::string(caption) + OneLine(text), size.columns)};
    };
    const std::string_view reconcile = state.aLblReconcile ? ReconcileCaption : "";
    const std::string_view foot =
        abortPressed ? "Aborting: the current step comes to its end" : "a or Ctrl-C: Abort";

    const std::vector<ScreenLine> head{{Spread(FormCaption, OneLine(state.lblver), size.columns)},
                                       {Spread(reconcile, ElapsedText(elapsed), size.columns)}};
    const std::vector<ScreenLine> item{field("Current  ", state.aItem),
                                       field("Errors   ", state.aError)};
    const ScreenLine last{FitColumns(foot, size.columns), abortPressed};

    std::size_t room = size.rows;
    const auto take = [&room](std::size_t lines) {
        const bool fits = lines <= room;
        if (fits) room -= lines;
        return fits;
    };
    const bool showItem = take(item.size());
    const bool showFoot = take(1);
    std::vector<ScreenLine> phases = PhaseLines(state, size.columns);
    // The line of the running phase is worth more than the head.
    const std::size_t leastPhases = std::min<std::size_t>(phases.size(), 1);
    const bool showHead = room >= head.size() + leastPhases && take(head.size());
    KeepAroundSelected(phases, room);
    room -= phases.size();

    std::vector<ScreenLine> lines;
    const auto add = [&lines](const std::vector<ScreenLine>& more) {
        lines.insert(lines.end(), more.begin(), more.end());
    };
    const auto addBlankWherePossible = [&] {
        if (room > 0 && take(1)) lines.emplace_back();
    };
    if (showHead) add(head);
    if (!phases.empty()) addBlankWherePossible();
    add(phases);
    addBlankWherePossible();
    if (showItem) add(item);
    if (showFoot) {
        addBlankWherePossible();
        lines.push_back(last);
    }
    return lines;
}

}  // namespace quillon
