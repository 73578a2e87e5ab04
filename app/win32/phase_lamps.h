#pragma once

#include <array>

#include "app/win32/control.h"
#include "platform/window.h"

namespace quillon {

/// The phase indicators, in one column or, when there are many, in two. Those that are done say
/// how long they took; those of other modes are dimmed.
class PhaseLamps {
  public:
    PhaseLamps() = default;
    explicit PhaseLamps(HWND parent);

    void SetFont(const Fonts& fonts);
    /// Whether other indicators than before are visible.
    bool Update(const std::array<PhaseIndicator, PhaseCount>& indicators);
    /// Of all rows, in dots, and what the longest captions need.
    int HeightIn(const Fonts& fonts) const;
    int WidthIn(const Fonts& fonts) const { return ColumnWidth(fonts, 0) + ColumnWidth(fonts, 1); }
    void Arrange(const Fonts& fonts, int left, int top, int width);

  private:
    bool HasTwoColumns() const;
    bool IsInSecond(const PhaseIndicator& one) const { return one.isOtherMode && HasTwoColumns(); }
    int ColumnWidth(const Fonts& fonts, int column) const;
    static int RowHeight(const Fonts& fonts) { return fonts.Height() * 4 / 3; }

    std::array<Control, PhaseCount> lamps_, times_;
    std::array<PhaseIndicator, PhaseCount> state_{};
};

}  // namespace quillon
