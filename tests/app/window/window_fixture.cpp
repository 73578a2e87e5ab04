#include "tests/app/window/window_fixture.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "app/views/window_module.h"
#include "driver/phase_captions.h"

namespace quillon {

namespace {

/// A platform without a screen that pretends to have one of 800x600, in the units of the scale. It
/// reads that from a file.
std::string SmallScreen(const std::filesystem::path& file) {
    const char* const scale = std::getenv("QT_SCALE_FACTOR");
    const int factor = scale == nullptr ? 1 : std::stoi(scale);
    std::ofstream(file) << R"({"screens": [{"name": "small", "x": 0, "y": 0, "logicalDpi": 96, )"
                        << R"("logicalBaseDpi": 96, "dpr": 1, "width": )" << 800 * factor
                        << R"(, "height": )" << 600 * factor << "}]}";
    return "offscreen:configfile=" + file.string();
}

}  // namespace

WindowFixture::WindowFixture() {
    Reopen();
}

void WindowFixture::Reopen() {
    window.reset();
    setenv("QT_QPA_PLATFORM", SmallScreen(folder_.Path() / "screen.json").c_str(), 1);
    // Other settings of the person at this desktop are no part of what is tested.
    for (const char* const name : {"QT_STYLE_OVERRIDE", "QT_QPA_PLATFORMTHEME"})
        unsetenv(name);
    WindowOffer offer = OpenWindow({QUILLON_WINDOW_FILE});
    if (offer.window == nullptr) throw std::runtime_error(offer.whyNot);
    window = std::move(offer.window);
}

FormState WindowFixture::Form() {
    FormState state;
    for (std::size_t i = 0; i < PhaseCount; ++i)
        state.aPhase.at(i) = {.caption = PhaseCaptions.at(i), .visible = false, .selected = false};
    state.lblver = "Version 1.2.3";
    state.aLblReconcile = false;
    return state;
}

FormState WindowFixture::Reconciling(std::size_t phase) {
    FormState state = Form();
    for (PhaseIndicator& indicator : state.aPhase)
        indicator.visible = true;
    for (std::size_t i = 10; i < PhaseCount; ++i)
        state.aPhase.at(i).isOtherMode = true;
    state.aPhase.at(phase).selected = true;
    state.aLblReconcile = true;
    return state;
}

FormState WindowFixture::InMode(std::size_t indicator) {
    FormState state = Form();
    state.aPhase.at(indicator).visible = true;
    state.aPhase.at(indicator).selected = true;
    return state;
}

void WindowFixture::Draw(FormState state) {
    // The version is text like any other; one that was not there before shows that this state is.
    state.lblver = "Version 1.2." + std::to_string(++draws_);
    const auto& shown = Control<QLabel>("lblver");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    for (;;) {
        window->ProcessEvents(state);
        if (shown.text().toStdString() == state.lblver) return;
        if (std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error("the window is never drawn");
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

void WindowFixture::ShowAndDraw(const FormState& state) {
    Show(state);
    Draw(state);
}

QWidget& WindowFixture::Desktop() {
    for (QWidget* const widget : QApplication::topLevelWidgets())
        if (widget->windowTitle() == "Library Consistency Management") return *widget;
    throw std::runtime_error("there is no window");
}

QImage WindowFixture::Picture(const std::string& name) {
    const QPixmap picture = Desktop().grab();
    const QString scale = QString::number(qApp->devicePixelRatio());
    QDir().mkpath(QUILLON_PICTURES);
    picture.save(QString(QUILLON_PICTURES) + "/" + QString::fromStdString(name) + "@" + scale +
                 "x.png");
    return picture.toImage();
}

}  // namespace quillon
