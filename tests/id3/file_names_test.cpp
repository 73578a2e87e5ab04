#include "id3/file_names.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(SongTitle, IsTheNameWithoutArtistAndEnding) {
    EXPECT_EQ(SongTitle("Alder - Dawn.mp3", "Alder"), "Dawn");
    EXPECT_EQ(SongTitle("Dawn.mp3", "Alder"), "Dawn");
    EXPECT_EQ(SongTitle("Alder - Alder - Dawn.mp3.mp3", "Alder"), "Dawn");
    EXPECT_EQ(SongTitle("01 - Alder - Dawn.mp3", "Alder"), "01 - Dawn");
}

TEST(SongTitle, DoesNotMindTheLetterCase) {
    EXPECT_EQ(SongTitle("Abba - Waterloo.mp3", "ABBA"), "Waterloo");
    EXPECT_EQ(SongTitle("ABBA - Waterloo.MP3", "Abba"), "Waterloo");
    EXPECT_EQ(SongTitle("ÖLVINDR - Ⱥ.mp3", "Ölvindr"), "Ⱥ");
    // The two cases of this letter differ in size.
    EXPECT_EQ(SongTitle("ⱥlder - Dawn.mp3", "Ⱥlder"), "Dawn");
}

TEST(SongTitle, KeepsWhatOnlyLooksLikeTheArtist) {
    EXPECT_EQ(SongTitle("Alder-Dawn.mp3", "Alder"), "Alder-Dawn");
    EXPECT_EQ(SongTitle("Alders - Dawn.mp3", "Alder"), "Alders - Dawn");
    EXPECT_EQ(SongTitle("Dawn.mp4", "Alder"), "Dawn.mp4");
}

TEST(RoundBrackets, ReplaceSquareOnes) {
    EXPECT_EQ(RoundBrackets("[x] y]"), "(x) y)");
}

}  // namespace
}  // namespace quillon
