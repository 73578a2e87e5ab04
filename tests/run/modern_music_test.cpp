#include "run/modern_music.h"

#include <gtest/gtest.h>
#include <string>

#include "platform/basic_text.h"
#include "tests/support/fakes.h"

namespace quillon {
namespace {

TEST(ModernMusic, IsOffWhereNothingIsSaid) {
    fakes::FakeWorld world;
    const ModernMusic modern = ReadModernMusic(world.host);
    for (const ModernKey& key : ModernKeys)
        EXPECT_FALSE(modern.*key.member) << key.key;
}

TEST(ModernMusic, EachKeySwitchesItsOwnOn) {
    for (const ModernKey& set : ModernKeys) {
        fakes::FakeWorld world;
        world.host.settings[LowerCase(set.key)] = set.on;
        const ModernMusic modern = ReadModernMusic(world.host);
        for (const ModernKey& key : ModernKeys)
            EXPECT_EQ(modern.*key.member, &key == &set) << set.key << ' ' << key.key;
    }
}

TEST(ModernMusic, WordsAreReadInAnyLetterCase) {
    fakes::FakeWorld world;
    world.host.settings["read"] = "BEST";
    world.host.settings["local"] = "Yes";
    const ModernMusic modern = ReadModernMusic(world.host);
    EXPECT_TRUE(modern.readsAllTags);
    EXPECT_TRUE(modern.writesLocalLists);
}

TEST(ModernMusic, WhatIsNeitherWordIsOffAndNotUnderstood) {
    fakes::FakeWorld world;
    for (const ModernKey& key : ModernKeys) {
        world.host.settings[LowerCase(key.key)] = "perhaps";
        EXPECT_FALSE(IsUnderstood(key, "perhaps"));
        EXPECT_TRUE(IsUnderstood(key, key.on));
        EXPECT_TRUE(IsUnderstood(key, key.off));
    }
    const ModernMusic modern = ReadModernMusic(world.host);
    for (const ModernKey& key : ModernKeys)
        EXPECT_FALSE(modern.*key.member) << key.key;
}

}  // namespace
}  // namespace quillon
