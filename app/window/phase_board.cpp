#include "app/window/phase_board.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>

#include "app/text/display_text.h"
#include "app/window/child.h"
#include "app/window/phase_lamp.h"
#include "app/window/shown_text.h"

namespace quillon {
namespace {

/// How long a phase took, with a mark that it is done.
QString TimeText(std::string_view duration) {
    return QStringLiteral("\u2713 ") + Shown(duration);
}

}  // namespace

PhaseBoard::PhaseBoard(QWidget* parent) : QWidget(parent), grid_(MakeChild<QGridLayout>(this)) {
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setVerticalSpacing(grid_->verticalSpacing() / 2);
    grid_->setHorizontalSpacing(2 * fontMetrics().averageCharWidth());
    // Times come up without moving anything.
    grid_->setColumnMinimumWidth(1, fontMetrics().horizontalAdvance(TimeText("0:00:00")));
    // The run says which are selected; they do not switch each other off.
    auto* const group = MakeChild<QButtonGroup>(this);
    group->setExclusive(false);
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        lamps_.at(i) = MakeChild<PhaseLamp>(this);
        group->addButton(lamps_.at(i));
        lamps_.at(i)->setObjectName("aPhase" + QString::number(i));
        lamps_.at(i)->hide();
        times_.at(i) = MakeChild<QLabel>(this);
        times_.at(i)->setObjectName("took" + QString::number(i));
        times_.at(i)->setTextFormat(Qt::PlainText);
        times_.at(i)->setForegroundRole(QPalette::PlaceholderText);
        times_.at(i)->hide();
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
        others_[i] = indicator.isOtherMode;
        if (lamp.isEnabled() == indicator.isOtherMode) lamp.setEnabled(!indicator.isOtherMode);
        ShowTime(i, indicator);
    }
    if (visible_ == shownBefore) return false;
    Arrange();
    return true;
}

void PhaseBoard::ShowTime(std::size_t phase, const PhaseIndicator& indicator) {
    QLabel& time = *times_.at(phase);
    if (!indicator.took || !time.text().isEmpty()) return;
    time.setText(TimeText(DurationText(*indicator.took)));
    time.setAccessibleName(Shown(indicator.caption) + " is done");
}

void PhaseBoard::Arrange() {
    const bool twoColumns = (visible_ & ~others_).any() && (visible_ & others_).any();
    grid_->setEnabled(false);
    for (PhaseLamp* const lamp : lamps_)
        grid_->removeWidget(lamp);
    for (QLabel* const time : times_)
        grid_->removeWidget(time);
    std::array<int, 2> rows{};
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        lamps_.at(i)->setVisible(visible_[i]);
        // Those in the second column belong to other modes and never get a time.
        const bool isSecond = twoColumns && others_[i];
        times_.at(i)->setVisible(visible_[i] && !isSecond);
        if (!visible_[i]) continue;
        const int row = rows.at(isSecond ? 1 : 0)++;
        grid_->addWidget(lamps_.at(i), row, isSecond ? 2 : 0);
        if (!isSecond) grid_->addWidget(times_.at(i), row, 1, Qt::AlignRight);
    }
    grid_->setColumnStretch(0, 1);
    grid_->setColumnStretch(2, twoColumns ? 1 : 0);
    grid_->setEnabled(true);
    grid_->activate();
}

}  // namespace quillon
