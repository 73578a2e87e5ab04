#include "app/views/window_view.h"

#include <csignal>
#include <gtest/gtest.h>

#include "app/signals.h"
#include "tests/app/pipe.h"
#include "tests/support/fakes.h"

namespace quillon {
namespace {

class WindowViewTest : public ::testing::Test {
  protected:
    WindowViewTest() {
        auto made = std::make_unique<fakes::FakeWindow>(calls);
        window = made.get();
        view = std::make_unique<WindowView>(std::move(made), pipe.Writer());
    }

    const Pipe pipe;
    fakes::Calls calls;
    fakes::FakeWindow* window = nullptr;
    std::unique_ptr<WindowView> view;
};

TEST_F(WindowViewTest, ShowsWhatTheRunShows) {
    FormState state;
    view->Show(state);
    state.aItem = "a song";
    view->ProcessEvents(state);
    view->Unload();
    EXPECT_EQ(calls.Of({""}), (std::vector<std::string>{"Show", "Item a song", "Unload"}));
}

TEST_F(WindowViewTest, AbortIsTheButtonOrASignal) {
    const AbortSignals signals;
    EXPECT_FALSE(view->AbortPressed());
    window->abortPressed = true;
    EXPECT_TRUE(view->AbortPressed());
    window->abortPressed = false;
    raise(SIGTERM);
    EXPECT_TRUE(view->AbortPressed());
}

TEST_F(WindowViewTest, RecordsGoToTheWindowAndOnlyTheSummaryToWhoStartedTheRun) {
    view->Show({});
    view->LogWritten(LogKind::Error, "Quillon", "ProcessTracks\nLine 4");
    view->Unload();
    view->Summarize({RunOutcome::NothingRan, {}, {}});
    EXPECT_EQ(pipe.Waiting(), "Nothing ran; no errors. 'quillon check' says what is in the way.\n");
    EXPECT_EQ(window->logged.size(), 1U);
    EXPECT_EQ(window->logged[0].first, LogKind::Error);
}

}  // namespace
}  // namespace quillon
