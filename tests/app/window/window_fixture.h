#pragma once

#include <QImage>
#include <QString>
#include <QWidget>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "platform/window.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {

/// The module's window, loaded and opened as the program does it.
class WindowFixture : public ::testing::Test {
  protected:
    WindowFixture();

    /// A form as it is before the first phase: no indicator is visible.
    static FormState Form();
    /// One as the driver makes it for a whole reconciliation, in this phase.
    static FormState Reconciling(std::size_t phase);
    /// One as the driver makes it for a mode of one indicator.
    static FormState InMode(std::size_t indicator);

    /// Another window in the place of the one that there was.
    void Reopen();

    void Show(const FormState& state) { window->Show(state); }

    /// Lets events run until the window has been drawn with this state.
    void Draw(FormState state);

    /// Shows the window and draws it.
    void ShowAndDraw(const FormState& state);

    /// The one window of the desktop.
    static QWidget& Desktop();

    /// The control of this name.
    template <typename Widget = QWidget>
    static Widget& Control(const QString& name) {
        auto* const found = Desktop().findChild<Widget*>(name);
        if (found == nullptr) throw std::runtime_error("no control " + name.toStdString());
        return *found;
    }

    static QWidget& Lamp(std::size_t index) { return Control("aPhase" + QString::number(index)); }

    /// Keeps a picture of the window for people to look at; its pixels.
    static QImage Picture(const std::string& name);

  private:
    outside::TemporaryFolder folder_;
    int draws_ = 0;

  protected:
    std::unique_ptr<Window> window;
};

}  // namespace quillon
