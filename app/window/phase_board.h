#pragma once

#include <QWidget>
#include <array>
#include <bitset>

#include "platform/window.h"

class QGridLayout;

namespace quillon {

class PhaseLamp;

/// The phase indicators, in one column or, when there are many, in two.
class PhaseBoard : public QWidget {
  public:
    explicit PhaseBoard(QWidget* parent);

    /// Whether other indicators than before are visible.
    bool Update(const std::array<PhaseIndicator, PhaseCount>& indicators);

  private:
    void Arrange();

    std::array<PhaseLamp*, PhaseCount> lamps_{};  ///< children of this widget
    QGridLayout* grid_;
    std::bitset<PhaseCount> visible_, selected_;
};

}  // namespace quillon
