#pragma once

#include <QWidget>
#include <array>
#include <bitset>

#include "platform/window.h"

class QGridLayout;
class QLabel;

namespace quillon {

class PhaseLamp;

/// The phase indicators, in one column or, when there are many, in two. Those that are done carry a
/// mark and the time that they took; those of other modes are dimmed.
class PhaseBoard : public QWidget {
  public:
    explicit PhaseBoard(QWidget* parent);

    /// Whether other indicators than before are visible.
    bool Update(const std::array<PhaseIndicator, PhaseCount>& indicators);

  private:
    void ShowTime(std::size_t phase, const PhaseIndicator& indicator);
    void Arrange();

    std::array<PhaseLamp*, PhaseCount> lamps_{};  ///< children of this widget, like the next
    std::array<QLabel*, PhaseCount> times_{};     ///< how long the phases took that are done
    QGridLayout* grid_;
    std::bitset<PhaseCount> visible_, selected_, others_;
};

}  // namespace quillon
