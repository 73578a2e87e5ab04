#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <clocale>
#include <cstdlib>
#include <dlfcn.h>

#include "app/version.h"
#include "app/window/window_maker.h"
#include "driver/library_form.h"
#include "driver/phase_captions.h"
#include "tests/app/window/window_fixture.h"
#include "tests/driver/form_fixture.h"

namespace quillon {
namespace {

/// Indices of the indicators that a person sees, or sees selected.
struct SeenIndicators {
    std::vector<std::size_t> visible, selected;
};

class FormWindow : public WindowFixture {
  protected:
    static SeenIndicators Seen() {
        SeenIndicators seen;
        for (std::size_t i = 0; i < PhaseCount; ++i) {
            const auto& lamp = Control<QAbstractButton>("aPhase" + QString::number(i));
            if (lamp.isVisible()) seen.visible.push_back(i);
            if (lamp.isChecked()) seen.selected.push_back(i);
        }
        return seen;
    }
    static std::vector<std::size_t> AllBut(std::size_t left) {
        std::vector<std::size_t> all;
        for (std::size_t i = 0; i < PhaseCount; ++i)
            if (i != left) all.push_back(i);
        return all;
    }
    static std::string Text(const char* name) {
        return Control<QLineEdit>(name).text().toStdString();
    }
};

TEST_F(FormWindow, HasItsTitleAndItsControlsByTheirNames) {
    ShowAndDraw(Reconciling(3));
    EXPECT_TRUE(Desktop().isVisible());
    EXPECT_EQ(Desktop().windowTitle(), "Library Consistency Management");
    for (std::size_t i = 0; i < PhaseCount; ++i)
        EXPECT_EQ(Control<QAbstractButton>("aPhase" + QString::number(i)).text().toStdString(),
                  PhaseCaptions.at(i));
    EXPECT_EQ(Control<QLabel>("aLblReconcile").text(), "Reconcille Library vs Database");
    EXPECT_EQ(Control<QAbstractButton>("aAbort").text().remove('&'), "Abort");
    std::vector<std::string> captions;
    for (const QLabel* const label : Desktop().findChildren<QLabel*>())
        if (label->buddy() != nullptr)
            captions.push_back(label->text().remove('&').toStdString() + " of " +
                               label->buddy()->objectName().toStdString());
    EXPECT_EQ(captions, (std::vector<std::string>{"Current of aItem", "Errors of aError"}));
}

TEST_F(FormWindow, ShowsTheVersion) {
    FormState state = Form();
    state.lblver = "Version 3.14.15";
    Show(state);
    EXPECT_EQ(Control<QLabel>("lblver").text(), "Version 3.14.15");
}

TEST_F(FormWindow, ShowsTheItemAndTheLatestError) {
    FormState state = Reconciling(3);
    state.aItem = "17. S\xC3\xA4ngerin \xE9\x9F\xB3\xE6\xA5\xBD";
    state.aError = "ProcessTracks";
    ShowAndDraw(state);
    EXPECT_EQ(Text("aItem"), state.aItem);
    EXPECT_EQ(Text("aError"), state.aError);
    state.aItem = "";
    Draw(state);
    EXPECT_EQ(Text("aItem"), "");
}

TEST_F(FormWindow, ShowsIndicatorsExactlyAsTheFormSays) {
    ShowAndDraw(Form());
    EXPECT_TRUE(Seen().visible.empty());
    FormState state = Reconciling(9);
    state.aPhase[2].visible = false;
    state.aPhase[0].selected = true;
    Draw(state);
    EXPECT_EQ(Seen().visible, AllBut(2));
    EXPECT_EQ(Seen().selected, (std::vector<std::size_t>{0, 9})) << "even two, if the form says so";
    for (PhaseIndicator& indicator : state.aPhase)
        indicator.selected = false;
    Draw(state);
    EXPECT_TRUE(Seen().selected.empty());
}

TEST_F(FormWindow, EveryModeShowsItsIndicatorAlone) {
    Show(Form());
    for (std::size_t i = 10; i < PhaseCount; ++i) {
        Draw(InMode(i));
        EXPECT_EQ(Seen().visible, (std::vector<std::size_t>{i}));
        EXPECT_EQ(Seen().selected, (std::vector<std::size_t>{i}));
        EXPECT_FALSE(Control("aLblReconcile").isVisible());
    }
}

TEST_F(FormWindow, VisibleIndicatorsDoNotOverlapAndStandInTheirOrder) {
    ShowAndDraw(Reconciling(0));
    for (std::size_t i = 1; i < PhaseCount; ++i) {
        const QRect before = Lamp(i - 1).geometry(), here = Lamp(i).geometry();
        EXPECT_FALSE(before.intersects(here)) << i;
        if (i == 10) {
            EXPECT_GT(here.left(), before.left()) << "the other modes have a column of their own";
        } else {
            EXPECT_GT(here.top(), before.top()) << i;
            EXPECT_EQ(here.left(), before.left()) << i;
        }
    }
}

TEST_F(FormWindow, ClosesWhenTheRunUnloadsIt) {
    ShowAndDraw(Form());
    window->Unload();
    EXPECT_EQ(qApp, nullptr);
    // What a run may still call afterwards.
    window->ProcessEvents(Form());
    window->LogWritten(LogKind::Error, "Quillon", "late");
    window->Unload();
    EXPECT_FALSE(window->AbortPressed());
}

TEST_F(FormWindow, MayBeUnloadedWithoutEverBeingShown) {
    window->LogWritten(LogKind::Information, "Quillon", "Quillon must be enabled");
    window->Unload();
    EXPECT_EQ(qApp, nullptr);
}

TEST_F(FormWindow, LeavesTheRunsLocaleAlone) {
    window.reset();
    setenv("LC_ALL", "C.UTF-8", 1);
    Reopen();
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

TEST_F(FormWindow, IsMadeForTheProgramOfItsOwnBuildAlone) {
    window.reset();
    void* const module = dlopen(QUILLON_WINDOW_FILE, RTLD_NOW);
    ASSERT_NE(module, nullptr);
    const auto maker = reinterpret_cast<WindowMaker>(dlsym(module, WindowMakerName));
    ASSERT_NE(maker, nullptr);
    EXPECT_EQ(maker("0.9.0", sizeof(FormState)), nullptr);
    const std::string own(ProgramVersion);
    EXPECT_EQ(maker(own.c_str(), sizeof(FormState) + 8), nullptr);
    EXPECT_NE(std::unique_ptr<Window>(maker(own.c_str(), sizeof(FormState))), nullptr);
}

/// Passes everything on to the real window, and notes each phase that it has drawn.
class WatchedWindow : public Window {
  public:
    WatchedWindow(Window& shown, std::function<void(const FormState&)> draw)
        : shown_(shown), draw_(std::move(draw)) {}
    void Show(const FormState& state) override { shown_.Show(state); }
    void ProcessEvents(const FormState& state) override { draw_(state); }
    void LogWritten(LogKind kind, std::string_view source, std::string_view text) override {
        shown_.LogWritten(kind, source, text);
    }
    bool AbortPressed() const override { return shown_.AbortPressed(); }
    void Unload() override { shown_.Unload(); }

  private:
    Window& shown_;
    std::function<void(const FormState&)> draw_;
};

class DrivenForm : public FormWindow {
  protected:
    /// Runs the driver's form with these settings on; what was seen selected, in order.
    std::vector<std::size_t> Drive(const std::vector<std::string>& keys) {
        std::vector<std::size_t> seen;
        WatchedWindow watched(*window, [&](const FormState& state) {
            Draw(state);
            const SeenIndicators now = Seen();
            EXPECT_LE(now.selected.size(), 1U);
            if (!now.selected.empty() && (seen.empty() || seen.back() != now.selected[0]))
                seen.push_back(now.selected[0]);
            visible = now.visible;
            reconcileLabel = Control("aLblReconcile").isVisible();
        });
        FormWorld form;
        for (const std::string& key : keys)
            form.host.Set(key, "1");
        form.Load(watched);
        return seen;
    }

    /// Fakes around a run whose procedures do nothing.
    class FormWorld : public FormFixture {
      public:
        FormWorld() {
            for (const auto& [member, name] : ProcedureNames())
                procedures.*member = [](Run&) {};
        }
        void Load(Window& shown) {
            Run shownRun(world.host, world.files, world.clock, shown);
            LibraryForm(shownRun, world.database, "1.2.3", procedures).Form_Load();
        }
        void TestBody() override {}
        using FormFixture::host;
    };

    std::vector<std::size_t> visible;
    bool reconcileLabel = false;
};

TEST_F(DrivenForm, AReconciliationShowsAllPhasesAndLightsOneAfterTheOther) {
    const auto seen = Drive({"Reconcile", "ID3Reconcile"});
    EXPECT_EQ(seen, (std::vector<std::size_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(visible.size(), PhaseCount);
    EXPECT_TRUE(reconcileLabel);
    EXPECT_EQ(qApp, nullptr) << "the window has closed itself";
}

TEST_F(DrivenForm, PlaylistsOnlyShowsThreePhases) {
    const auto seen = Drive({"PlaylistsOnly"});
    EXPECT_EQ(seen, (std::vector<std::size_t>{0, 7, 8}));
    EXPECT_EQ(visible, (std::vector<std::size_t>{0, 7, 8}));
    EXPECT_TRUE(reconcileLabel);
}

TEST_F(DrivenForm, AnotherModeShowsItsIndicator) {
    EXPECT_EQ(Drive({"AlbumPicker"}), (std::vector<std::size_t>{10}));
    EXPECT_EQ(visible, (std::vector<std::size_t>{10}));
    EXPECT_FALSE(reconcileLabel);
}

}  // namespace
}  // namespace quillon
