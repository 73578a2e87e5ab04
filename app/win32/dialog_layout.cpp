#include <algorithm>

#include "app/win32/library_dialog.h"

namespace quillon {
namespace {

/// How wide the window opens, in heights of a line, and how many errors it shows at once.
constexpr int UsualWidthInLines = 44, UsualLinesOfErrors = 8;

}  // namespace

int LibraryDialog::NeededHeight(int errorLines) const {
    int height = Margin();
    if (aLblReconcile_.IsShown()) height += RowHeight();
    height += lamps_.HeightIn(fonts_) + Margin();
    height += 2 * (RowHeight() + Margin() / 2);  // the fields
    height += RowHeight() + Margin() / 2;        // the bar
    height += RowHeight() + Margin() / 2;        // the line of errors
    if (errorLines > 0) height += errorLines * fonts_.Height() + Margin();
    return height + Margin() / 2 + RowHeight() + Margin();
}

/// Makes room for what has become visible, as far as the screen has any.
void LibraryDialog::Grow() {
    RECT inside{};
    GetClientRect(window_, &inside);
    const int lines = errorsAreOpen_ ? UsualLinesOfErrors : 0;
    const SIZE size =
        WindowSizeFor(std::max({static_cast<int>(inside.right), UsualWidthInLines * fonts_.Height(),
                                lamps_.WidthIn(fonts_) + 2 * Margin()}),
                      std::max<int>(inside.bottom, NeededHeight(lines)));
    RECT place{};
    GetWindowRect(window_, &place);
    MONITORINFO screen{};
    screen.cbSize = sizeof screen;
    GetMonitorInfoW(MonitorFromWindow(window_, MONITOR_DEFAULTTONEAREST), &screen);
    const RECT& room = screen.rcWork;
    const int width = std::min<int>(size.cx, room.right - room.left);
    const int height = std::min<int>(size.cy, room.bottom - room.top);
    const int left = std::max<int>(room.left, std::min<int>(place.left, room.right - width));
    const int top = std::max<int>(room.top, std::min<int>(place.top, room.bottom - height));
    SetWindowPos(window_, nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    Arrange();
}

int LibraryDialog::ArrangeFields(int left, int top, int width) {
    const int caption = std::max(fonts_.WidthOf(L"Current"), fonts_.WidthOf(L"Errors")) + Margin();
    const auto placeRow = [&](Control& label, Control& field) {
        label.Place(left, top + (RowHeight() - fonts_.Height()) / 2, caption, fonts_.Height());
        field.Place(left + caption, top, width - caption, RowHeight());
        top += RowHeight() + Margin() / 2;
    };
    placeRow(itemLabel_, aItem_);
    placeRow(errorLabel_, aError_);
    const int percent = fonts_.WidthOf(L"100 %") + Margin() / 2;
    progress_.Place(left, top + RowHeight() / 6, width - percent, RowHeight() * 2 / 3);
    percent_.Place(left + width - percent, top + (RowHeight() - fonts_.Height()) / 2, percent,
                   fonts_.Height());
    return top + RowHeight() + Margin() / 2;
}

void LibraryDialog::ArrangeErrors(int left, int top, int width, int bottom) {
    const int button = fonts_.WidthOf(L"00000 errors") + 2 * Margin();
    const int elapsed = fonts_.WidthOf(L"Elapsed 00:00:00") + Margin();
    errorsButton_.Place(left, top, button, RowHeight());
    elapsed_.Place(left + width - elapsed, top + (RowHeight() - fonts_.Height()) / 2, elapsed,
                   fonts_.Height());
    const int list = top + RowHeight() + Margin() / 2;
    errors_.Place(left, list, width, std::max(bottom - list - Margin() / 2, 0));
}

void LibraryDialog::Arrange() {
    RECT inside{};
    GetClientRect(window_, &inside);
    const int left = Margin(), width = inside.right - 2 * Margin();
    int top = Margin();
    if (aLblReconcile_.IsShown()) {
        aLblReconcile_.Place(left, top, width, RowHeight());
        top += RowHeight();
    }
    lamps_.Arrange(fonts_, left, top, width);
    top += lamps_.HeightIn(fonts_) + Margin();
    top = ArrangeFields(left, top, width);

    const int lastLine = inside.bottom - Margin() - RowHeight();
    ArrangeErrors(left, top, width, lastLine);
    const int text = lastLine + (RowHeight() - fonts_.Height()) / 2;
    const int button = fonts_.WidthOf(L"Aborting") + 3 * Margin();
    const int version = fonts_.WidthOf(L"Version 000.000.000");
    lblver_.Place(left, text, version, fonts_.Height());
    const int remark = std::min(fonts_.WidthOf(remark_.Text()) + 2, width - version - button);
    remark_.Place(left + width - button - Margin() - remark, text, remark, fonts_.Height());
    aAbort_.Place(left + width - button, lastLine, button, RowHeight());
    // Controls that take their pictures along would leave some of them where others are now.
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

}  // namespace quillon
