#include <QAccessible>
#include <QLabel>
#include <QProgressBar>
#include <set>

#include "tests/app/window/window_fixture.h"

namespace quillon {
namespace {

class Accessibility : public WindowFixture {
  protected:
    Accessibility() { ShowAndDraw(Reconciling(3)); }

    static QAccessibleInterface& Of(QWidget& widget) {
        return *QAccessible::queryAccessibleInterface(&widget);
    }
    static std::string Name(QWidget& widget) {
        return Of(widget).text(QAccessible::Name).toStdString();
    }
};

TEST_F(Accessibility, ControlsHaveTheirNamesAndRoles) {
    struct Case {
        const char* control;
        QAccessible::Role role;
        std::string name;
    };
    for (const Case& expected : std::vector<Case>{
             {"aItem", QAccessible::EditableText, "Current"},
             {"aError", QAccessible::EditableText, "Errors"},
             {"aAbort", QAccessible::Button, "Abort"},
             {"aLblReconcile", QAccessible::StaticText, "Reconcille Library vs Database"},
             {"progress", QAccessible::ProgressBar, "Progress of the phase"},
             {"errorsButton", QAccessible::CheckBox, "No errors"},
             {"errorRecords", QAccessible::EditableText, "Error records"},
         }) {
        QWidget& control = Control(expected.control);
        EXPECT_EQ(Name(control), expected.name);
        EXPECT_EQ(Of(control).role(), expected.role) << expected.control;
    }
    EXPECT_EQ(Name(Desktop()), "Library Consistency Management");
    EXPECT_EQ(Name(Control("lblver")).substr(0, 8), "Version ");
    EXPECT_EQ(Name(Control("elapsed")).substr(0, 10), "Elapsed 0:");
}

TEST_F(Accessibility, FieldsAreReadOnly) {
    for (const char* const name : {"aItem", "aError"})
        EXPECT_TRUE(Of(Control(name)).state().readOnly) << name;
}

TEST_F(Accessibility, TheBarTellsHowFarThePhaseIs) {
    FormState state = Reconciling(3);
    state.progress = {.done = 30, .total = 120};
    Draw(state);
    QAccessibleValueInterface* const value = Of(Control("progress")).valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->currentValue().toInt() * 4, value->maximumValue().toInt());
}

TEST_F(Accessibility, TheKeyboardGoesRoundTheControlsThatDoSomething) {
    window->LogWritten(LogKind::Error, "Quillon", "x");
    Draw(Reconciling(3));
    std::set<std::string> reached;
    const QWidget* widget = &Desktop();
    do {
        widget = widget->nextInFocusChain();
        if ((widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisible())
            reached.insert(widget->objectName().toStdString());
    } while (widget != &Desktop());
    EXPECT_EQ(reached, (std::set<std::string>{"aItem", "aError", "errorsButton", "aAbort"}));
}

}  // namespace
}  // namespace quillon
