#include <QAbstractButton>
#include <QScreen>
#include <QtTest/QTest>

#include "tests/app/window/window_fixture.h"

namespace quillon {
namespace {

class WindowSize : public WindowFixture {
  protected:
    static QSize Size() { return Desktop().size(); }
};

TEST_F(WindowSize, StaysPutWhateverTheTextsSay) {
    FormState state = Reconciling(3);
    ShowAndDraw(state);
    const QSize before = Size(), least = Desktop().minimumSizeHint();
    const QRect button = Control("aAbort").geometry();
    for (const std::size_t length : {10U, 300U, 5000U}) {
        state.aItem = std::string(length, 'W');
        state.aError = std::string(length, 'W');
        state.progress = {.done = length, .total = 1000000};
        window->LogWritten(LogKind::Error, "Quillon", std::string(length, 'W'));
        Draw(state);
        EXPECT_EQ(Size(), before);
    }
    for (int i = 0; i < 100000; ++i)
        window->LogWritten(LogKind::Error, "Quillon", "x");
    state.aborting = true;
    Draw(state);
    EXPECT_EQ(Size(), before);
    EXPECT_EQ(Control("aAbort").geometry(), button);
    EXPECT_EQ(Desktop().minimumSizeHint().height(), least.height());
    EXPECT_LE(Desktop().minimumSizeHint().width(), before.width());
}

TEST_F(WindowSize, GrowsWithItsIndicatorsAndKeepsItsWidth) {
    ShowAndDraw(Form());
    const QSize bare = Size();
    Draw(InMode(10));
    const QSize one = Size();
    EXPECT_GT(one.height(), bare.height());
    EXPECT_EQ(one.width(), bare.width());
    Draw(Reconciling(0));
    EXPECT_GT(Size().height(), one.height());
    EXPECT_EQ(Size().width(), bare.width());
}

/// Counts how often a widget gets another size.
class ResizeCount : public QObject {
  public:
    explicit ResizeCount(QWidget& widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::Resize) ++count;
        return false;
    }
    int count = 0;
};

TEST_F(WindowSize, GrowsInOneStep) {
    ShowAndDraw(Form());
    const ResizeCount resizes(Desktop());
    Draw(Reconciling(0));
    EXPECT_EQ(resizes.count, 1);
    window->LogWritten(LogKind::Error, "Quillon", "x");
    Draw(Reconciling(0));
    QTest::mouseClick(&Control("errorsButton"), Qt::LeftButton);
    Draw(Reconciling(0));
    EXPECT_EQ(resizes.count, 2);
    QTest::mouseClick(&Control("errorsButton"), Qt::LeftButton);
    Draw(Reconciling(0));
    EXPECT_EQ(resizes.count, 3);
}

TEST_F(WindowSize, FitsASmallScreenWithEverythingOpen) {
    ShowAndDraw(Reconciling(0));
    window->LogWritten(LogKind::Error, "Quillon", "x");
    Draw(Reconciling(0));
    const QSize closed = Size();
    QTest::mouseClick(&Control("errorsButton"), Qt::LeftButton);
    Draw(Reconciling(0));
    ASSERT_EQ(Desktop().screen()->availableSize(), QSize(800, 600));
    EXPECT_LE(Size().width(), 780);
    EXPECT_LE(Size().height(), 560) << "room for a title bar";
    EXPECT_GT(Size().height(), closed.height());
    QTest::mouseClick(&Control("errorsButton"), Qt::LeftButton);
    Draw(Reconciling(0));
    EXPECT_EQ(Size(), closed);
}

TEST_F(WindowSize, APersonMayMakeItLargerAndItStaysSo) {
    ShowAndDraw(Reconciling(0));
    Desktop().resize(Size() + QSize(100, 80));
    const QSize chosen = Size();
    FormState state = Reconciling(5);
    state.aItem = "another";
    Draw(state);
    EXPECT_EQ(Size(), chosen);
}

}  // namespace
}  // namespace quillon
