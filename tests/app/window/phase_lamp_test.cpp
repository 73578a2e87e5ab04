#include <QAbstractButton>
#include <QAccessible>
#include <QLabel>
#include <QtTest/QTest>

#include "tests/app/window/window_fixture.h"

namespace quillon {
namespace {

/// Indicators are for the run to select, and for nobody else.
class PhaseLamps : public WindowFixture {
  protected:
    PhaseLamps() { ShowAndDraw(Reconciling(3)); }

    static QAbstractButton& LampButton(std::size_t i) {
        return Control<QAbstractButton>("aPhase" + QString::number(i));
    }
    /// That the fourth alone is selected, for people and for assistive programs, however long one
    /// waits.
    void ExpectUnchanged(const char* after) {
        Draw(Reconciling(3));
        for (std::size_t i = 0; i < PhaseCount; ++i) {
            EXPECT_EQ(LampButton(i).isChecked(), i == 3) << after << ", " << i;
            EXPECT_EQ(QAccessible::queryAccessibleInterface(&LampButton(i))->state().checked,
                      i == 3)
                << after << ", " << i;
        }
    }
};

TEST_F(PhaseLamps, CarryAMarkAndTheirTimeWhenTheirPhaseIsDone) {
    FormState state = Reconciling(3);
    state.aPhase[0].took = std::chrono::milliseconds(450);
    Draw(state);
    EXPECT_EQ(Control<QLabel>("took0").text(), QStringLiteral("\u2713 0.4 s"));
    EXPECT_EQ(Control<QLabel>("took1").text(), "");
}

TEST_F(PhaseLamps, AreDimmedWhereTheyBelongToOtherModes) {
    Draw(Reconciling(3));
    EXPECT_TRUE(LampButton(9).isEnabled());
    EXPECT_FALSE(LampButton(10).isEnabled());
}

TEST_F(PhaseLamps, CannotBeSelectedWithTheMouse) {
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        const QPoint place = LampButton(i).mapTo(&Desktop(), QPoint(8, LampButton(i).height() / 2));
        QTest::mouseClick(&LampButton(i), Qt::LeftButton, {}, QPoint(8, 8));
        QTest::mouseClick(Desktop().windowHandle(), Qt::LeftButton, {}, place);
    }
    ExpectUnchanged("clicks");
}

TEST_F(PhaseLamps, CannotBeSelectedWithTheKeyboard) {
    for (int presses = 0; presses < 30; ++presses) {
        QWidget* const focused = Desktop().focusWidget();
        ASSERT_FALSE(focused->objectName().startsWith("aPhase"));
        QTest::keyClick(focused, Qt::Key_Tab);
    }
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        LampButton(i).setFocus();
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Up, Qt::Key_Down})
            QTest::keyClick(&LampButton(i), key);
        LampButton(i).clearFocus();
    }
    ExpectUnchanged("keys");
}

TEST_F(PhaseLamps, CannotBeSelectedByAnAssistiveProgram) {
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        QAccessibleInterface* const lamp = QAccessible::queryAccessibleInterface(&LampButton(i));
        ASSERT_NE(lamp, nullptr);
        EXPECT_FALSE(lamp->state().focusable);
        QAccessibleActionInterface* const actions = lamp->actionInterface();
        ASSERT_NE(actions, nullptr);
        for (const QString& action :
             actions->actionNames() + QStringList{QAccessibleActionInterface::pressAction(),
                                                  QAccessibleActionInterface::toggleAction()}) {
            actions->doAction(action);
            ExpectUnchanged(qPrintable(action));
        }
    }
    // A press is shown for a moment before it has its effect.
    QTest::qWait(200);
    ExpectUnchanged("a while");
}

TEST_F(PhaseLamps, CannotBeSelectedByAProgram) {
    LampButton(5).click();
    LampButton(6).toggle();
    LampButton(7).setChecked(true);
    LampButton(3).setChecked(false);
    ExpectUnchanged("calls");
}

TEST_F(PhaseLamps, AreRadioButtonsNamedByTheirCaptions) {
    for (std::size_t i = 0; i < PhaseCount; ++i) {
        const QAccessibleInterface* const lamp =
            QAccessible::queryAccessibleInterface(&LampButton(i));
        EXPECT_EQ(lamp->role(), QAccessible::RadioButton);
        EXPECT_EQ(lamp->text(QAccessible::Name).toStdString(), Reconciling(0).aPhase[i].caption);
    }
}

}  // namespace
}  // namespace quillon
