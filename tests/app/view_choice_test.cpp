#include "app/views/view_choice.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace quillon {
namespace {

using Views = std::vector<ViewKind>;

TEST(ViewsToTry, LeftToTheProgramFollowTheSurroundings) {
    struct Case {
        std::string what;
        Surroundings surroundings;
        Views expected;
    };
    const Views screen{ViewKind::Terminal, ViewKind::Plain}, plain{ViewKind::Plain},
        window{ViewKind::Window, ViewKind::Plain};
    for (const auto& [what, surroundings, expected] : std::vector<Case>{
             {"cron", {false, false, false, false}, plain},
             {"a terminal without a desktop", {true, true, false, false}, screen},
             {"a terminal on a desktop", {true, true, true, false}, screen},
             {"a terminal that a launcher has opened", {true, true, true, true}, screen},
             {"a launcher", {false, false, true, true}, window},
             {"a job of a desktop's user without a launcher", {false, false, true, false}, plain},
             {"a launcher's mark without a display", {false, false, false, true}, plain},
             {"a pipe in a launched terminal", {true, false, true, true}, plain},
             {"input from a file in a launched terminal", {false, true, true, true}, plain},
         })
        EXPECT_EQ(ViewsToTry(ViewKind::Auto, surroundings), expected) << what;
}

TEST(ViewsToTry, AreTheOneThatWasAskedFor) {
    for (const ViewKind kind : {ViewKind::Window, ViewKind::Terminal, ViewKind::Plain}) {
        EXPECT_EQ(ViewsToTry(kind, {}), Views{kind});
        EXPECT_EQ(ViewsToTry(kind, {true, true, true, true}), Views{kind});
    }
}

/// With the variables of displays and launchers as a test sets them.
class LookAroundTest : public ::testing::Test {
  protected:
    LookAroundTest() {
        for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "GIO_LAUNCHED_DESKTOP_FILE",
                                       "DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"})
            unsetenv(name);
    }
};

TEST_F(LookAroundTest, SeesADisplayOfEitherKind) {
    EXPECT_FALSE(LookAround().display);
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY"}) {
        setenv(name, "", 1);
        EXPECT_FALSE(LookAround().display) << name << " is empty";
        setenv(name, "x", 1);
        EXPECT_TRUE(LookAround().display) << name;
        unsetenv(name);
    }
}

TEST_F(LookAroundTest, SeesTheMarkOfAnyLauncher) {
    EXPECT_FALSE(LookAround().launched);
    for (const char* const name :
         {"GIO_LAUNCHED_DESKTOP_FILE", "DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"}) {
        setenv(name, "x", 1);
        EXPECT_TRUE(LookAround().launched) << name;
        unsetenv(name);
    }
}

}  // namespace
}  // namespace quillon
