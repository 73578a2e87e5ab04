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

TEST(IsSoundFile, IsNoCompanionOfOne) {
    EXPECT_FALSE(IsSoundFile("._a.mp3"));
    EXPECT_FALSE(IsSoundFile(R"(D:\Music\A\B\._a.mp3)"));
    EXPECT_TRUE(IsSoundFile(R"(D:\Music\._A\B\a.mp3)"));
    EXPECT_TRUE(IsSoundFile(".hidden.mp3"));
    EXPECT_TRUE(IsSoundFile("_a.mp3"));
}

TEST(IsOtherAudio, KnowsTheOtherTypesInAnyLetterCase) {
    for (const char* const name : {"a.flac", "a.OGG", "a.m4a", "a.wma", "a.Wav", "a.opus", "a.aac",
                                   "a.ape", "a.aiff", "b.c.flac"})
        EXPECT_TRUE(IsOtherAudio(name)) << name;
    for (const char* const name :
         {"a.mp3", "a.jpg", "flac", "a.flac.txt", "._a.flac", "a.", "a", ""})
        EXPECT_FALSE(IsOtherAudio(name)) << name;
}

}  // namespace
}  // namespace quillon
