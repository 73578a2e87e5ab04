#include <gtest/gtest.h>

#include "reconcile/tracks.h"

namespace quillon {
namespace {

constexpr bool Tree = false, FlatLayout = true;

TEST(GetTrackName, IsWhatFollowsTheDashInTheTreeLayout) {
    EXPECT_EQ(GetTrackName(R"(D:\Music\A\B\01 - Song.mp3)", Tree), "Song");
    EXPECT_EQ(GetTrackName(R"(D:\Music\A\B\01 - Song - live.mp3)", Tree), "Song - live");
}

TEST(GetTrackName, IsTheFileNameWithoutADashInTheTreeLayout) {
    EXPECT_EQ(GetTrackName(R"(D:\Music\A\B\Song.mp3)", Tree), "Song");
    EXPECT_EQ(GetTrackName(R"(D:\Music\A\B\01-Song_2.mp3)", Tree), "01-Song_2");
}

// The search is for the first " - " of the whole path.
TEST(GetTrackName, BeginsAtADashInAFolderNameAndHoldsBackslashes) {
    EXPECT_EQ(GetTrackName(R"(D:\Music\A - Z\B\01 - Song.mp3)", Tree), R"(Z\B\01 - Song)");
}

TEST(GetTrackName, IsWhatFollowsTheLastUnderscoreInTheFlatLayout) {
    EXPECT_EQ(GetTrackName(R"(D:\Music\Artist_Title.mp3)", FlatLayout), "Title");
    EXPECT_EQ(GetTrackName(R"(D:\Music\A_B_C.mp3)", FlatLayout), "C");
    EXPECT_EQ(GetTrackName(R"(D:\Music\Artist_01 - Title.mp3)", FlatLayout), "01 - Title");
}

TEST(GetTrackName, KeepsAnEndingInCapitals) {
    EXPECT_EQ(GetTrackName(R"(D:\Music\Artist_Title.MP3)", FlatLayout), "Title.MP3");
    EXPECT_EQ(GetTrackName(R"(D:\Music\A\B\Song.Mp3)", Tree), "Song.Mp3");
}

TEST(GetTrackName, LosesEveryLowerCaseEnding) {
    EXPECT_EQ(GetTrackName(R"(D:\Music\A\B\01 - a.mp3 b.mp3)", Tree), "a b");
}

TEST(GetTrackName, IsTheWholePathWithoutAnySeparator) {
    EXPECT_EQ(GetTrackName("Song.mp3", Tree), "Song.mp3");
    EXPECT_EQ(GetTrackName("Song.mp3", FlatLayout), "Song.mp3");
}

TEST(GetTrackName, IsThatOfTheSongWhileItsFileIsBeingRenamed) {
    EXPECT_EQ(GetTrackName(R"(D:\Music\A\B\A - Song.quillon-renaming.mp3)", Tree), "Song");
}

TEST(GetTrackName, MayBeEmpty) {
    EXPECT_EQ(GetTrackName(R"(D:\Music\A\B\01 - .mp3)", Tree), "");
    EXPECT_EQ(GetTrackName(R"(D:\Music\A_.mp3)", FlatLayout), "");
}

TEST(GetTrackName, FindsAnUnderscoreInAFolderNameInTheFlatLayout) {
    EXPECT_EQ(GetTrackName(R"(D:\My_Music\Song.mp3)", FlatLayout), R"(Music\Song)");
}

}  // namespace
}  // namespace quillon
