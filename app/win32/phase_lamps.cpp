#include "app/win32/phase_lamps.h"

#include <algorithm>

#include "app/text/display_text.h"

namespace quillon {
namespace {

constexpr const wchar_t* LongestTime = L"done in 0:00:00 ";

}  // namespace

PhaseLamps::PhaseLamps(HWND parent) {
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        lamps_.at(i) = MakeLamp(parent);
        times_.at(i) = Control(parent, L"STATIC", SS_RIGHT | SS_NOPREFIX);
        lamps_.at(i).Show(false);
        times_.at(i).Show(false);
        state_.at(i).visible = false;
    }
}

void PhaseLamps::SetFont(const Fonts& fonts) {
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        lamps_.at(i).Send(WM_SETFONT, reinterpret_cast<WPARAM>(fonts.Plain()), TRUE);
        times_.at(i).Send(WM_SETFONT, reinterpret_cast<WPARAM>(fonts.Plain()), TRUE);
    }
}

bool PhaseLamps::HasTwoColumns() const {
    const auto isOwn = [](const PhaseIndicator& one) { return one.visible && !one.isOtherMode; };
    const auto isOther = [](const PhaseIndicator& one) { return one.visible && one.isOtherMode; };
    return std::ranges::any_of(state_, isOwn) && std::ranges::any_of(state_, isOther);
}

bool PhaseLamps::Update(const std::array<PhaseIndicator, PhaseCount>& indicators) {
    bool isOther = false;
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        const PhaseIndicator& now = indicators.at(i);
        PhaseIndicator& before = state_.at(i);
        lamps_.at(i).SetText(Caption(now.caption));
        lamps_.at(i).Enable(!now.isOtherMode);
        if (now.selected != before.selected) SelectLamp(lamps_.at(i), now.selected);
        if (now.took && !before.took)
            times_.at(i).SetText(L"done in " + Shown(DurationText(*now.took)));
        isOther = isOther || now.visible != before.visible || now.isOtherMode != before.isOtherMode;
        before = now;
    }
    return isOther;
}

/// With the lamp itself, the room for a time, and what lies between.
int PhaseLamps::ColumnWidth(const Fonts& fonts, int column) const {
    int widest = 0;
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        const bool isHere = state_.at(i).visible && IsInSecond(state_.at(i)) == (column == 1);
        if (isHere) widest = std::max(widest, fonts.WidthOf(lamps_.at(i).Text()));
    }
    if (widest == 0) return 0;
    const int time = column == 1 ? 0 : fonts.WidthOf(LongestTime);
    return widest + 3 * fonts.Height() + time;
}

int PhaseLamps::HeightIn(const Fonts& fonts) const {
    std::array<int, 2> rows{};
    for (const PhaseIndicator& one : state_)
        if (one.visible) ++rows.at(IsInSecond(one) ? 1 : 0);
    return std::max(rows[0], rows[1]) * RowHeight(fonts);
}

void PhaseLamps::Arrange(const Fonts& fonts, int left, int top, int width) {
    const int second = ColumnWidth(fonts, 1);
    const int gap = second > 0 ? fonts.Height() : 0;
    // What room there is beside the longest captions, both columns share.
    const int first = second == 0
                          ? width
                          : ColumnWidth(fonts, 0) + std::min(0, width - WidthIn(fonts)) / 2 +
                                std::max(0, width - WidthIn(fonts)) / 3 - gap;
    const int time = fonts.WidthOf(LongestTime);
    std::array<int, 2> rows{};
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        const bool isSecond = IsInSecond(state_.at(i));
        const bool isVisible = state_.at(i).visible;
        const int x = left + (isSecond ? first + gap : 0);
        const int column = isSecond ? width - first - gap : first;
        const int y = top + rows.at(isSecond ? 1 : 0) * RowHeight(fonts);
        if (isVisible) ++rows.at(isSecond ? 1 : 0);
        // Those of other modes never get a time.
        const int room = isSecond ? 0 : time;
        if (isVisible) {
            lamps_.at(i).Place(x, y, column - room, RowHeight(fonts));
            times_.at(i).Place(x + column - room, y + (RowHeight(fonts) - fonts.Height()) / 2, room,
                               fonts.Height());
        }
        lamps_.at(i).Show(isVisible);
        times_.at(i).Show(isVisible && !isSecond);
    }
}

}  // namespace quillon
