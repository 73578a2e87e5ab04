#include <QApplication>
#include <QPalette>
#include <QStyleFactory>
#include <QtTest/QTest>

#include "tests/app/window/window_fixture.h"

namespace quillon {
namespace {

QPalette DarkPalette() {
    QPalette dark(QColor(53, 53, 53), QColor(53, 53, 53));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(role, QColor(235, 235, 235));
    dark.setColor(QPalette::Base, QColor(35, 35, 35));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(QPalette::Disabled, role, QColor(130, 130, 130));
    return dark;
}

/// Pictures stay in the build folder for people to look at.
class Pictures : public WindowFixture {
  protected:
    static FormState AtWork() {
        FormState state = Reconciling(3);
        state.aItem = R"(D:\Music\Alder, Wilhelmina\Complete Symphonies, Volume Two, with the )"
                      R"(Philharmonic Orchestra of a Very Long Name\07 - Andante mosso.mp3)";
        state.aError = "ProcessTracks";
        state.progress = {.done = 1234, .total = 4321};
        state.aPhase[0].took = std::chrono::milliseconds(450);
        state.aPhase[1].took = std::chrono::milliseconds(30);
        state.aPhase[2].took = std::chrono::milliseconds(75'000);
        return state;
    }
    /// Lightness of a window's ground and of the brightest and darkest thing on it.
    struct Range {
        int ground, least, most;
    };
    static Range Lightness(const QImage& picture) {
        Range range{qGray(picture.pixel(2, 2)), 255, 0};
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                range.least = std::min(range.least, qGray(picture.pixel(x, y)));
                range.most = std::max(range.most, qGray(picture.pixel(x, y)));
            }
        }
        return range;
    }
};

TEST_F(Pictures, AllIndicators) {
    ShowAndDraw(AtWork());
    EXPECT_GT(Lightness(Picture("reconcile")).ground, 200);
}

TEST_F(Pictures, OneMode) {
    FormState state = InMode(13);
    state.aItem = "Alder - Dawn.mp3";
    ShowAndDraw(state);
    EXPECT_FALSE(Picture("mode").isNull());
}

TEST_F(Pictures, PlaylistsOnly) {
    FormState state = Form();
    state.aLblReconcile = true;
    for (const std::size_t i : {0U, 7U, 8U})
        state.aPhase.at(i).visible = true;
    state.aPhase[7].selected = true;
    ShowAndDraw(state);
    EXPECT_FALSE(Picture("playlists").isNull());
}

TEST_F(Pictures, ErrorsListedWhileAborting) {
    const FormState state = AtWork();
    ShowAndDraw(state);
    for (int i = 0; i < 1200; ++i)
        window->LogWritten(LogKind::Error, "Quillon",
                           "ProcessTracks Line " + std::to_string(i % 70) +
                               " Path not found: D:\\Music\\Artist\\Album\\" + std::to_string(i));
    Draw(state);
    QTest::mouseClick(&Control("errorsButton"), Qt::LeftButton);
    QTest::mouseClick(&Control("aAbort"), Qt::LeftButton);
    Draw(state);
    EXPECT_FALSE(Picture("errors").isNull());
}

TEST_F(Pictures, DarkDesktop) {
    QApplication::setPalette(DarkPalette());
    const FormState state = AtWork();
    ShowAndDraw(state);
    window->LogWritten(LogKind::Error, "Quillon", "ProcessTracks Line 4 Path not found");
    Draw(state);
    QTest::mouseClick(&Control("errorsButton"), Qt::LeftButton);
    Draw(state);
    const Range dark = Lightness(Picture("dark"));
    EXPECT_LT(dark.ground, 60) << "the desktop's colours are taken";
    EXPECT_GT(dark.most, 200) << "and texts can be read on them";
    QTest::mouseClick(&Control("aAbort"), Qt::LeftButton);
    Draw(state);
    EXPECT_FALSE(Picture("dark-aborting").isNull());
}

}  // namespace
}  // namespace quillon
