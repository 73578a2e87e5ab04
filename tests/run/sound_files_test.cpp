#include "run/sound_files.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(IsSoundFile, LooksAtTheLastFourCharactersInAnyLetterCase) {
    EXPECT_TRUE(IsSoundFile("a.mp3"));
    EXPECT_TRUE(IsSoundFile("A.MP3"));
    EXPECT_TRUE(IsSoundFile(".mp3"));
    EXPECT_FALSE(IsSoundFile("a.mp3.txt"));
    EXPECT_FALSE(IsSoundFile("mp3"));
    EXPECT_FALSE(IsSoundFile(""));
    EXPECT_FALSE(IsSoundFile("a.mp4"));
}

}  // namespace
}  // namespace quillon
