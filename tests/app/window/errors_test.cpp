#include <QAbstractButton>
#include <QLabel>
#include <QPlainTextEdit>
#include <QtTest/QTest>

#include "tests/app/window/window_fixture.h"

namespace quillon {
namespace {

class ErrorRecords : public WindowFixture {
  protected:
    ErrorRecords() { ShowAndDraw(InMode(16)); }

    void Log(int first, int last) {
        for (int i = first; i <= last; ++i)
            window->LogWritten(LogKind::Error, "Quillon", "error " + std::to_string(i));
        Draw(InMode(16));
    }
    static QAbstractButton& Button() { return Control<QAbstractButton>("errorsButton"); }
    static QPlainTextEdit& List() { return Control<QPlainTextEdit>("errorRecords"); }
    static QStringList Lines() { return List().toPlainText().split('\n'); }
    static bool TellsOfOlderOnes() {
        for (const QLabel* const label : Desktop().findChildren<QLabel*>())
            if (label->text() == "Older errors are in the log.") return label->isVisible();
        return false;
    }
    void OpenList() {
        QTest::mouseClick(&Button(), Qt::LeftButton);
        Draw(InMode(16));
    }
};

TEST_F(ErrorRecords, AreCounted) {
    EXPECT_EQ(Button().text(), "No errors");
    EXPECT_FALSE(Button().isEnabled());
    Log(1, 1);
    EXPECT_EQ(Button().text(), "1 error");
    EXPECT_TRUE(Button().isEnabled());
    Log(2, 12);
    EXPECT_EQ(Button().text(), "12 errors");
}

TEST_F(ErrorRecords, OtherRecordsOfTheLogAreNoErrors) {
    window->LogWritten(LogKind::Information, "Quillon", "all is well");
    Draw(InMode(16));
    EXPECT_EQ(Button().text(), "No errors");
}

TEST_F(ErrorRecords, AreListedOnRequest) {
    Log(1, 2);
    EXPECT_FALSE(List().isVisible());
    OpenList();
    EXPECT_TRUE(List().isVisible());
    EXPECT_EQ(Lines(), (QStringList{"Quillon: error 1", "Quillon: error 2"}));
    Log(3, 3);
    EXPECT_EQ(Lines().back(), "Quillon: error 3") << "the list goes on while it is open";
    OpenList();
    EXPECT_FALSE(List().isVisible());
}

TEST_F(ErrorRecords, AreOpenedAndClosedWithTheKeyboard) {
    Log(1, 1);
    Button().setFocus();
    QTest::keyClick(&Button(), Qt::Key_Space);
    EXPECT_TRUE(List().isVisible());
    QTest::keyClick(&Button(), Qt::Key_Return);
    EXPECT_FALSE(List().isVisible());
}

TEST_F(ErrorRecords, CanBeSelectedAndCopied) {
    Log(1, 3);
    OpenList();
    QTest::keyClick(&List(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(List().textCursor().selectedText().split(QChar::ParagraphSeparator).size(), 3);
    QTest::keyClicks(&List(), "typed");
    EXPECT_EQ(Lines().size(), 3);
}

TEST_F(ErrorRecords, OnlyTheNewestThousandAreKept) {
    Log(1, 1000);
    OpenList();
    EXPECT_EQ(Lines().size(), 1000);
    EXPECT_EQ(Lines().front(), "Quillon: error 1");
    EXPECT_FALSE(TellsOfOlderOnes());
    Log(1001, 1500);
    EXPECT_EQ(Lines().size(), 1000);
    EXPECT_EQ(Lines().front(), "Quillon: error 501");
    EXPECT_EQ(Lines().back(), "Quillon: error 1500");
    EXPECT_TRUE(TellsOfOlderOnes());
    EXPECT_EQ(Button().text(), "1500 errors") << "but all are counted";
}

TEST_F(ErrorRecords, ManyBeforeTheListIsOpenedLeaveTheNewest) {
    Log(1, 5000);
    OpenList();
    EXPECT_EQ(Lines().size(), 1000);
    EXPECT_EQ(Lines().front(), "Quillon: error 4001");
    EXPECT_TRUE(TellsOfOlderOnes());
}

TEST_F(ErrorRecords, ARecordIsOneLineWhateverIsInIt) {
    window->LogWritten(LogKind::Error, "Qui\nllon", "a\r\nb <i>c</i> &amp;\x01");
    Draw(InMode(16));
    OpenList();
    EXPECT_EQ(Lines(), QStringList{"Qui llon: a  b <i>c</i> &amp; "});
}

TEST_F(ErrorRecords, ASelectionCannotBeDraggedAway) {
    Log(1, 3);
    OpenList();
    List().selectAll();
    QTest::mousePress(List().viewport(), Qt::LeftButton, {}, QPoint(10, 8));
    EXPECT_FALSE(List().textCursor().hasSelection()) << "a drag would hold the run";
    QTest::mouseRelease(List().viewport(), Qt::LeftButton, {}, QPoint(10, 8));
}

}  // namespace
}  // namespace quillon
