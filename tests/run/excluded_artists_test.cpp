#include "run/excluded_artists.h"

#include <gtest/gtest.h>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

TEST(ExcludedArtists, AreNamedWholeInAnyLetterCaseWithTheirBlanks) {
    fakes::FakeWorld world;
    world.run.ExcludeEmpty = false;
    world.run.ExcludeList = {"Red", " Blue", "\xC3\x96lvindr"};
    const ExcludedArtists excluded(world.run);
    EXPECT_TRUE(excluded.Contains("rED"));
    EXPECT_TRUE(excluded.Contains(" blue"));
    EXPECT_TRUE(excluded.Contains("\xC3\xB6lvindr"));
    EXPECT_FALSE(excluded.Contains("Blue"));
    EXPECT_FALSE(excluded.Contains("Redder"));
    EXPECT_FALSE(excluded.Contains(""));
}

TEST(ExcludedArtists, AreNoneWithoutAList) {
    fakes::FakeWorld world;
    world.run.ExcludeEmpty = true;
    world.run.ExcludeList = {""};
    const ExcludedArtists excluded(world.run);
    EXPECT_FALSE(excluded.Contains(""));
    EXPECT_FALSE(excluded.Contains("Red"));
}

}  // namespace
}  // namespace quillon
