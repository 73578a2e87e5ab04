#include <QAbstractButton>
#include <QLabel>
#include <QWindow>
#include <QtTest/QTest>

#include "tests/app/window/window_fixture.h"

namespace quillon {
namespace {

class AbortButton : public WindowFixture {
  protected:
    AbortButton() { ShowAndDraw(Reconciling(3)); }

    static QAbstractButton& Button() { return Control<QAbstractButton>("aAbort"); }
    static QString Remark() { return Control<QLabel>("remark").text(); }

    /// What a person sees of an abort that was heard.
    void ExpectHeard() {
        EXPECT_FALSE(Button().isEnabled());
        EXPECT_EQ(Button().text(), "Aborting");
        EXPECT_EQ(Remark(), "Aborting; the run stops after the current step.");
        EXPECT_TRUE(Desktop().isVisible()) << "it stays until the run has stopped";
    }
    void ExpectNotPressed() {
        EXPECT_FALSE(window->AbortPressed());
        EXPECT_TRUE(Button().isEnabled());
        EXPECT_EQ(Remark(), "");
    }
};

TEST_F(AbortButton, IsNotPressedByItself) {
    Draw(Reconciling(4));
    ExpectNotPressed();
}

TEST_F(AbortButton, IsPressedWithTheMouse) {
    QTest::mouseClick(&Button(), Qt::LeftButton);
    EXPECT_TRUE(window->AbortPressed());
    ExpectHeard();
    Draw(Reconciling(3));
    EXPECT_TRUE(window->AbortPressed()) << "once and for all";
    window->Unload();
    EXPECT_TRUE(window->AbortPressed());
}

TEST_F(AbortButton, IsPressedByItsShortcut) {
    Desktop().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Desktop()));
    QTest::keyClick(Desktop().windowHandle(), Qt::Key_A, Qt::AltModifier);
    // The button is seen to go down before it is pressed.
    EXPECT_TRUE(QTest::qWaitFor([this] { return window->AbortPressed(); }));
    ExpectHeard();
}

TEST_F(AbortButton, IsReachedAndPressedWithTheKeyboardAlone) {
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        Reopen();
        ShowAndDraw(Reconciling(3));
        for (int presses = 0; !Button().hasFocus() && presses < 30; ++presses)
            QTest::keyClick(Desktop().focusWidget(), Qt::Key_Tab);
        ASSERT_TRUE(Button().hasFocus());
        QTest::keyClick(&Button(), key);
        EXPECT_TRUE(window->AbortPressed()) << key;
    }
}

TEST_F(AbortButton, EscapeLeadsToItAndDoesNotPressIt) {
    QTest::keyClick(Desktop().focusWidget(), Qt::Key_Escape);
    QTest::keyClick(Desktop().focusWidget(), Qt::Key_Escape);
    EXPECT_TRUE(Button().hasFocus());
    ExpectNotPressed();
}

TEST_F(AbortButton, IsNotPressedByKeysMeantForAnotherProgram) {
    QTest::keyClicks(Desktop().focusWidget(), "as a");
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter})
        QTest::keyClick(Desktop().focusWidget(), key);
    ExpectNotPressed();
}

TEST_F(AbortButton, ClosingTheWindowIsAbort) {
    EXPECT_FALSE(Desktop().close());
    EXPECT_TRUE(window->AbortPressed());
    ExpectHeard();
}

TEST_F(AbortButton, ShowsAnAbortThatCameFromElsewhere) {
    FormState state = Reconciling(3);
    state.aborting = true;
    Draw(state);
    ExpectHeard();
    EXPECT_FALSE(window->AbortPressed()) << "nobody has pressed this button";
}

}  // namespace
}  // namespace quillon
