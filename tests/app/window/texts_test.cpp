#include <QAccessible>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QToolTip>
#include <QtTest/QTest>

#include "tests/app/window/window_fixture.h"

namespace quillon {
namespace {

/// Names of songs and folders come from outside: they may look like anything.
class Texts : public WindowFixture {
  protected:
    Texts() { Show(InMode(10)); }

    static QLineEdit& Item() { return Control<QLineEdit>("aItem"); }
    static QString ToolTipOf(QWidget& widget) {
        const QPoint place = widget.rect().center();
        QHelpEvent help(QEvent::ToolTip, place, widget.mapToGlobal(place));
        QApplication::sendEvent(&widget, &help);
        return QToolTip::text();
    }
    void DrawItem(const std::string& item) {
        FormState state = InMode(10);
        state.aItem = item;
        state.aError = item;
        Draw(state);
    }
    static QImage Pixels(QWidget& widget) { return widget.grab().toImage(); }
};

const std::string LongPath = R"(D:\Music\)" + std::string(120, 'W') + R"(\01 - Dawn.mp3)";

TEST_F(Texts, MarkupIsShownAsItStands) {
    for (const std::string& text :
         std::vector<std::string>{"<b>Bold</b> &amp; Rock & Roll", "<img src='x'>", "&Abort"}) {
        DrawItem(text);
        EXPECT_EQ(Item().text().toStdString(), text);
        window->LogWritten(LogKind::Error, "Quillon", text);
    }
    for (const QLabel* const label : Desktop().findChildren<QLabel*>())
        EXPECT_TRUE(label->buddy() != nullptr || label->textFormat() == Qt::PlainText);
}

TEST_F(Texts, ControlCharactersAreHarmless) {
    DrawItem("a\nb\tc\x1b[2J\x7f\xff\xE2\x80\xA8z");
    EXPECT_EQ(Item().text(), QString::fromUtf8("a b c [2J \xEF\xBF\xBD z"));
}

TEST_F(Texts, ALongPathIsShortenedInTheMiddle) {
    DrawItem(LongPath);
    EXPECT_EQ(Item().text().toStdString(), LongPath) << "whoever reads the field gets all of it";
    const QImage shortened = Pixels(Item());
    // The end of the path is on the screen: another file name makes another picture.
    std::string other = LongPath;
    other.replace(other.size() - 8, 4, "Dusk");
    DrawItem(other);
    EXPECT_NE(Pixels(Item()), shortened);
    // So is its beginning.
    other = LongPath;
    other[0] = 'E';
    DrawItem(other);
    EXPECT_NE(Pixels(Item()), shortened);
    // And its middle is not.
    other = LongPath;
    other[60] = 'M';
    DrawItem(other);
    EXPECT_EQ(Pixels(Item()), shortened);
}

TEST_F(Texts, AShortenedPathIsToldWholeByItsToolTip) {
    DrawItem(LongPath + " <b>&amp;");
    EXPECT_EQ(ToolTipOf(Item()).toStdString(), "<qt>" + LongPath + " &lt;b&gt;&amp;amp;</qt>");
    DrawItem("short <b>");
    ToolTipOf(Item());
    EXPECT_EQ(Item().toolTip(), "") << "as long as all of it can be seen, there is none";
    QToolTip::hideText();
}

TEST_F(Texts, AssistiveProgramsGetTheWholePath) {
    DrawItem(LongPath);
    for (const char* const name : {"aItem", "aError"}) {
        const QAccessibleInterface* const field =
            QAccessible::queryAccessibleInterface(&Control(name));
        EXPECT_EQ(field->text(QAccessible::Value).toStdString(), LongPath) << name;
    }
}

TEST_F(Texts, AFieldCanBeReadAndCopiedButNotChanged) {
    DrawItem(LongPath);
    Item().setFocus();
    QTest::keyClicks(&Item(), "typed");
    QTest::keyClick(&Item(), Qt::Key_Delete);
    EXPECT_EQ(Item().text().toStdString(), LongPath);
    QTest::keyClick(&Item(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Item().selectedText().toStdString(), LongPath);
}

}  // namespace
}  // namespace quillon
