#include "run/moved_music.h"

#include <gtest/gtest.h>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

TEST(ReadMovedMusicSettings, AreOffWhereNothingIsSaid) {
    fakes::FakeWorld world;
    const MovedMusicSettings settings = ReadMovedMusicSettings(world.host);
    EXPECT_FALSE(settings.FollowMovedFiles);
    EXPECT_EQ(settings.KeepDays, 0);
}

TEST(ReadMovedMusicSettings, ComeFromTheHostsFile) {
    fakes::FakeWorld world;
    world.host.settings["followmovedfiles"] = "yes";
    world.host.settings["keepdays"] = "14";
    const MovedMusicSettings settings = ReadMovedMusicSettings(world.host);
    EXPECT_TRUE(settings.FollowMovedFiles);
    EXPECT_EQ(settings.KeepDays, 14);
}

TEST(ReadMovedMusicSettings, AreOffWhereTheirValuesAreNone) {
    fakes::FakeWorld world;
    world.host.settings["followmovedfiles"] = "perhaps";
    world.host.settings["keepdays"] = "-3";
    const MovedMusicSettings settings = ReadMovedMusicSettings(world.host);
    EXPECT_FALSE(settings.FollowMovedFiles);
    EXPECT_EQ(settings.KeepDays, 0);
}

}  // namespace
}  // namespace quillon
