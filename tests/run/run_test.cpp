#include "run/run.h"

#include <gtest/gtest.h>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

TEST(RunProgress, IsUnknownUntilATotalIsTold) {
    fakes::FakeWorld world;
    EXPECT_EQ(world.run.form.progress.total, 0U);
    world.run.CountDone();
    EXPECT_EQ(world.run.form.progress.done, 0U);
}

TEST(RunProgress, NeverPassesItsTotal) {
    fakes::FakeWorld world;
    world.run.StartCounting(2);
    for (int i = 0; i < 5; ++i)
        world.run.CountDone();
    EXPECT_EQ(world.run.form.progress.done, 2U);
    EXPECT_EQ(world.run.form.progress.total, 2U);
}

TEST(RunProgress, BeginsAnewWithTheNextTotal) {
    fakes::FakeWorld world;
    world.run.StartCounting(2);
    world.run.CountDone();
    world.run.StartCounting(7);
    EXPECT_EQ(world.run.form.progress.done, 0U);
    EXPECT_EQ(world.run.form.progress.total, 7U);
}

TEST(RunEvents, TellTheFacesThatAbortWasNoticed) {
    fakes::FakeWorld world;
    world.run.ProcessEvents();
    EXPECT_FALSE(world.run.form.aborting);
    world.window.abortPressed = true;
    world.run.ProcessEvents();
    EXPECT_TRUE(world.run.form.aborting);
}

}  // namespace
}  // namespace quillon
