#include "app/views/screen_layout.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <string_view>
#include <utility>

#include "app/text/display_text.h"

namespace quillon {
namespace {

// The form is not stretched over a wide screen; long texts below it may use all of it.
constexpr std::size_t FormColumns = 80;
constexpr std::size_t CaptionColumns = 46;
constexpr std::size_t PercentColumns = 7;
constexpr std::size_t ShortestBar = 8, LongestBar = 24;
constexpr std::size_t SideGap = 4, NarrowestSide = 48;
constexpr std::size_t LeastRecordRows = 4;
constexpr std::size_t LeastMarkedRows = 4;  ///< three lines of the list and one that says it is cut
constexpr std::string_view RecordsCaption = "Log";

bool IsStrong(const ScreenLine& line) {
    return !line.empty() && line.front().style == ScreenStyle::Strong;
}

std::size_t ColumnsOf(const ScreenLine& line) {
    std::size_t columns = 0;
    for (const ScreenSpan& span : line)
        columns += DisplayColumns(span.text);
    return columns;
}

/// Two texts at the ends of one line. The right one gives way where both do not fit.
ScreenLine Spread(std::string_view left, std::string_view right, ScreenStyle leftStyle,
                  std::size_t columns) {
    const std::size_t taken = DisplayColumns(left) + DisplayColumns(right);
    if (taken + 2 > columns) return {{FitColumns(left, columns), leftStyle}};
    return {{std::string(left), leftStyle},
            {std::string(columns - taken, ' ').append(right), ScreenStyle::Faint}};
}

/// A caption and a text that is shortened where both do not fit.
ScreenLine Field(std::string_view caption, std::string_view text, ScreenStyle style,
                 std::size_t columns) {
    const std::string shownCaption = FitColumns(caption, columns);
    return {{shownCaption, ScreenStyle::Faint},
            {ShortenMiddle(text, columns - DisplayColumns(shownCaption)), style}};
}

ScreenLine ErrorField(const FormState& form, std::size_t errors, std::size_t columns) {
    if (errors == 0 && form.aError.empty())
        return Field("Errors   ", "none", ScreenStyle::Faint, columns);
    const std::string count = errors > 1 ? fmt::format("{}, the latest: ", errors) : "";
    return Field("Errors   ", count + OneLine(form.aError), ScreenStyle::Error, columns);
}

/// Marker, caption and, where it is known, how far the phase has come.
ScreenLine RunningPhase(const std::string& text, const PhaseProgress& progress,
                        std::size_t columns) {
    const double part = progress.Part();
    if ((part == 0 && !progress.IsKnown()) || columns <= 2 * PercentColumns)
        return {{FitColumns(text, columns), ScreenStyle::Strong}};
    const std::string percent = fmt::format("  {:3} %", static_cast<int>(part * 100));
    if (columns < CaptionColumns + PercentColumns + ShortestBar + 2) {
        return {{FitColumns(text, columns - PercentColumns), ScreenStyle::Strong},
                {percent, ScreenStyle::Progress}};
    }
    const std::size_t length = std::min(LongestBar, columns - CaptionColumns - PercentColumns - 2);
    const auto full = static_cast<std::size_t>(part * static_cast<double>(length));
    std::string bar = std::string(full, '#').append(length - full, '.');
    std::string caption = FitColumns(text, CaptionColumns);
    caption.append(CaptionColumns - DisplayColumns(caption), ' ');
    return {{std::move(caption), ScreenStyle::Strong},
            {'[' + std::move(bar) + ']' + percent, ScreenStyle::Progress}};
}

/// Marker, caption and how long it took.
ScreenLine DonePhase(std::string_view caption, std::chrono::milliseconds took,
                     std::size_t columns) {
    const std::string text = std::string(" ok  ").append(caption), time = DurationText(took);
    const std::size_t captionColumns = std::min(CaptionColumns, columns);
    if (captionColumns + time.size() > columns) return {{FitColumns(text, columns)}};
    return {{text},
            {std::string(captionColumns - DisplayColumns(text), ' ') + time, ScreenStyle::Faint}};
}

std::vector<ScreenLine> PhaseLines(const FormState& form, std::size_t columns) {
    std::vector<ScreenLine> lines;
    for (const PhaseIndicator& phase : form.aPhase) {
        if (!phase.visible) continue;
        if (phase.selected) {
            lines.push_back(
                RunningPhase(std::string(" (*) ").append(phase.caption), form.progress, columns));
        } else if (phase.took) {
            lines.push_back(DonePhase(phase.caption, *phase.took, columns));
        } else {
            lines.push_back({{FitColumns(std::string(" ( ) ").append(phase.caption), columns),
                              phase.isOtherMode ? ScreenStyle::Faint : ScreenStyle::Usual}});
        }
    }
    // Backups of a reconciliation are made before its phases are shown.
    if (lines.empty() && form.progress.IsKnown())
        lines.push_back(RunningPhase(" (*) Backups", form.progress, columns));
    return lines;
}

/// In place of lines that do not fit.
ScreenLine Cut(std::size_t count, std::string_view where, std::size_t columns) {
    return {{FitColumns(fmt::format("     ... {} more {}", count, where), columns),
             ScreenStyle::Faint}};
}

/// Takes away what does not fit, so that the last selected line and what comes next stay. Lines say
/// how many are missing, unless there is room for hardly anything.
void KeepAroundSelected(std::vector<ScreenLine>& lines, std::size_t room, std::size_t columns) {
    if (lines.size() <= room) return;
    const std::size_t all = lines.size();
    const auto selected = std::find_if(lines.rbegin(), lines.rend(), IsStrong);
    const std::size_t position =
        selected == lines.rend() ? 0 : static_cast<std::size_t>(lines.rend() - selected) - 1;
    const std::size_t first =
        std::min(position - std::min(position, room / 2), lines.size() - room);
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(first));
    lines.resize(room);
    if (room < LeastMarkedRows) return;
    if (first > 0) lines.front() = Cut(first + 1, "above", columns);
    if (first + room < all) lines.back() = Cut(all - first - room + 1, "below", columns);
}

ScreenLine Foot(bool aborting, std::size_t columns) {
    if (!aborting) return {{FitColumns("a or Ctrl-C: Abort", columns), ScreenStyle::Faint}};
    constexpr std::string_view Aborting = "Aborting: finishing the current step";
    constexpr std::string_view More = "   (Ctrl-C: end at once)";
    const bool room = columns >= Aborting.size() + More.size();
    ScreenLine line{{FitColumns(Aborting, columns), ScreenStyle::Strong}};
    if (room) line.push_back({std::string(More), ScreenStyle::Faint});
    return line;
}

/// The latest records that fit, under a caption.
std::vector<ScreenLine> RecordLines(const std::deque<ShownRecord>& records, ScreenSize size) {
    std::vector<ScreenLine> lines;
    if (records.empty()) return lines;
    lines.push_back({{FitColumns(RecordsCaption, size.columns), ScreenStyle::Faint}});
    const std::size_t shown = std::min(records.size(), size.rows - 1);
    for (auto i = records.end() - static_cast<std::ptrdiff_t>(shown); i != records.end(); ++i) {
        const bool error = i->kind == LogKind::Error;
        lines.push_back({{ShortenMiddle((error ? "! " : "  ") + i->text, size.columns),
                          error ? ScreenStyle::Error : ScreenStyle::Usual}});
    }
    return lines;
}

/// Puts the right lines beside the left ones, from a column on that all left ones leave free.
void PutBeside(std::vector<ScreenLine>& left, const std::vector<ScreenLine>& right,
               std::size_t column) {
    for (std::size_t i = 0; i < right.size() && i < left.size(); ++i) {
        left[i].push_back({std::string(column - ColumnsOf(left[i]), ' ')});
        left[i].insert(left[i].end(), right[i].begin(), right[i].end());
    }
}

}  // namespace

std::vector<ScreenLine> LayOutScreen(const FormState& form, const ScreenRemarks& remarks,
                                     ScreenSize size) {
    const std::size_t formColumns = std::min(size.columns, FormColumns);
    const std::vector<ScreenLine> head{
        Spread(FormCaption, OneLine(form.lblver), ScreenStyle::Strong, formColumns),
        Spread(form.aLblReconcile ? ReconcileCaption : "", ElapsedText(remarks.elapsed),
               ScreenStyle::Usual, formColumns)};
    const std::vector<ScreenLine> item{
        Field("Current  ", OneLine(form.aItem), ScreenStyle::Usual, size.columns),
        ErrorField(form, remarks.errors, size.columns)};

    std::size_t room = size.rows;
    const auto take = [&room](std::size_t lines) {
        const bool fits = lines <= room;
        if (fits) room -= lines;
        return fits;
    };
    const bool showItem = take(item.size());
    const bool showFoot = take(1);
    std::vector<ScreenLine> phases = PhaseLines(form, formColumns);
    // The line of the running phase is worth more than the head.
    const std::size_t leastPhases = std::min<std::size_t>(phases.size(), 1);
    const bool showHead = room >= head.size() + leastPhases && take(head.size());
    KeepAroundSelected(phases, room, formColumns);
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
    const std::size_t formRows = lines.size();
    addBlankWherePossible();
    if (showItem) add(item);
    if (showFoot) {
        addBlankWherePossible();
        lines.push_back(Foot(remarks.aborting || form.aborting, size.columns));
    }
    const std::size_t sideColumn = FormColumns + SideGap;
    if (room >= LeastRecordRows) {
        addBlankWherePossible();
        add(RecordLines(remarks.records, {size.columns, room}));
    } else if (size.columns >= sideColumn + NarrowestSide && formRows > 1) {
        PutBeside(lines, RecordLines(remarks.records, {size.columns - sideColumn, formRows}),
                  sideColumn);
    }
    return lines;
}

}  // namespace quillon
