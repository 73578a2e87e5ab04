#include "app/window/phase_board.h"

#include <QButtonGroup>
#include <QGridLayout>

#include "app/window/child.h"
#include "app/window/phase_lamp.h"
#include "app/window/shown_text.h"

namespace quillon {
namespace {

/// The first indicator that belongs to no phase of a reconciliation.
constexpr std::size_t FirstOtherMode = 10;

}  // namespace

PhaseBoard::PhaseBoard(QWidget* parent) : QWidget(parent), grid_(MakeChild<QGridLayout>(this)) {
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setVerticalSpacing(grid_->verticalSpacing() / 2);
    grid_->setHorizontalSpacing(3 * fontMetrics().averageCharWidth());
    // The run says which are selected; they do not switch each other off.
    auto* const group = MakeChild<QButtonGroup>(this);
    group->setExclusive(false);
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        lamps_.at(i) = MakeChild<PhaseLamp>(this);
        group->addButton(lamps_.at(i));
        lamps_.at(i)->setObjectName("aPhase" + QString::number(i));
        lamps_.at(i)->hide();
    }
}

bool PhaseBoard::Update(const std::array<PhaseIndicator, PhaseCount>& indicators) {
    const std::bitset<PhaseCount> shownBefore = visible_;
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        PhaseLamp& lamp = *lamps_.at(i);
        const PhaseIndicator& indicator = indicators.at(i);
        if (lamp.text().isEmpty()) lamp.setText(Caption(indicator.caption));
        if (indicator.selected != selected_[i]) lamp.SetSelected(indicator.selected);
        selected_[i] = indicator.selected;
        visible_[i] = indicator.visible;
    }
    if (visible_ == shownBefore) return false;
    Arrange();
    return true;
}

void PhaseBoard::Arrange() {
    const std::bitset<PhaseCount> reconciling((1U << FirstOtherMode) - 1);
    const bool twoColumns = (visible_ & reconciling).any() && (visible_ & ~reconciling).any();
    grid_->setEnabled(false);
    for (PhaseLamp* const lamp : lamps_)
        grid_->removeWidget(lamp);
    std::array<int, 2> rows{};
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        lamps_.at(i)->setVisible(visible_[i]);
        if (!visible_[i]) continue;
        const std::size_t column = twoColumns && i >= FirstOtherMode ? 1 : 0;
        grid_->addWidget(lamps_.at(i), rows.at(column)++, static_cast<int>(column));
    }
    grid_->setColumnStretch(0, 1);
    grid_->setColumnStretch(1, twoColumns ? 1 : 0);
    grid_->setEnabled(true);
    grid_->activate();
}

}  // namespace quillon
