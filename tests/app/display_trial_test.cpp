#include "app/views/display_trial.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace quillon {
namespace {

using namespace std::chrono_literals;

/// Trials that end in the ways in which opening a display may end.
class DisplayTrial : public ::testing::Test {
  protected:
    DisplayTrial() {
        for (const char* const name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY"})
            unsetenv(name);
        setenv("DISPLAY", ":7", 1);
    }
    /// The reason after an opening that says this and then fails.
    static std::string ReasonAfter(const char* said) {
        return WhyNoDisplay([said] {
            fputs(said, stderr);
            abort();
        });
    }
};

TEST_F(DisplayTrial, HasNoReasonWhenTheDisplayOpens) {
    EXPECT_EQ(WhyNoDisplay([] {}), "");
    EXPECT_EQ(WhyNoDisplay([] { fputs("qt.qpa.xcb: a warning\n", stderr); }), "");
}

TEST_F(DisplayTrial, NeedsAVariableThatNamesADisplay) {
    unsetenv("DISPLAY");
    bool tried = false;
    EXPECT_EQ(WhyNoDisplay([&tried] { tried = true; }),
              "there is no display (neither DISPLAY nor WAYLAND_DISPLAY is set)");
    EXPECT_FALSE(tried);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    EXPECT_EQ(WhyNoDisplay([] {}), "");
    unsetenv("QT_QPA_PLATFORM");
    setenv("WAYLAND_DISPLAY", "wayland-0", 1);
    EXPECT_EQ(WhyNoDisplay([] {}), "");
}

TEST_F(DisplayTrial, SurvivesAndExplainsAnOpeningThatEndsItsProcess) {
    EXPECT_EQ(ReasonAfter("qt.qpa.xcb: could not connect to display :7\nqt.qpa.plugin: more\n"),
              "the display cannot be opened (DISPLAY=:7: could not connect to display :7)");
    EXPECT_EQ(ReasonAfter(""), "the display cannot be opened (DISPLAY=:7)");
    EXPECT_EQ(WhyNoDisplay([] { _exit(1); }), "the display cannot be opened (DISPLAY=:7)");
    EXPECT_EQ(WhyNoDisplay([] { kill(getpid(), SIGKILL); }),
              "the display cannot be opened (DISPLAY=:7)");
}

TEST_F(DisplayTrial, TellsTheFirstThingThatIsAReason) {
    EXPECT_EQ(ReasonAfter("QStandardPaths: XDG_RUNTIME_DIR not set\n\nAuthorization required\n"
                          "qt.qpa.xcb: could not connect\n"),
              "the display cannot be opened (DISPLAY=:7: Authorization required)");
}

TEST_F(DisplayTrial, TellsItOnOneShortLine) {
    const std::string reason = ReasonAfter(("a\x1b[2J\t" + std::string(9000, 'x')).c_str());
    EXPECT_EQ(reason.find_first_of("\x1b\t\n"), std::string::npos);
    EXPECT_LT(reason.size(), 200U);
    setenv("DISPLAY", "evil\n\x1b[2J", 1);
    EXPECT_EQ(WhyNoDisplay([] { _exit(1); }), "the display cannot be opened (DISPLAY=evil  [2J)");
}

TEST_F(DisplayTrial, GivesUpOnADisplayThatDoesNotAnswer) {
    EXPECT_EQ(WhyNoDisplay([] { pause(); }, 50ms), "the display does not answer (DISPLAY=:7)");
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "and leaves no process behind";
}

TEST_F(DisplayTrial, DoesNotWaitForWhatTheOpeningHasStarted) {
    // Such as the desktop's message bus. It keeps the messages' file open, but not the pipe.
    const auto open = [] {
        if (fork() != 0) return;
        close(STDOUT_FILENO);
        execlp("sleep", "sleep", "20", nullptr);
    };
    EXPECT_EQ(WhyNoDisplay(open, 5s), "");
}

TEST_F(DisplayTrial, LeavesItsOwnProcessAsItWas) {
    testing::internal::CaptureStderr();
    EXPECT_NE(ReasonAfter("seen by nobody\n"), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace quillon
