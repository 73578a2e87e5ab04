#include <gtest/gtest.h>

#include "id3/song_genre.h"

namespace quillon {
namespace {

TEST(GenreInFileName, IsWhatStandsBetweenTheFirstTwoDashesOfTheBaseName) {
    EXPECT_EQ(GenreInFileName("rtsp://a-b-c/spinlinks/000-Rock-000.rm"), "Rock");
    EXPECT_EQ(GenreInFileName("000-Hip-Hop-000.rm"), "Hip");
    EXPECT_EQ(GenreInFileName("C:\\x-y-z\\000-Rock-.rm"), "Rock");
    EXPECT_EQ(GenreInFileName("000--000.rm"), "");
    EXPECT_EQ(GenreInFileName("000-Rock.a-b"), "");
    EXPECT_EQ(GenreInFileName("Rock.rm"), "");
    EXPECT_EQ(GenreInFileName("000-Rock.rm"), "");
    EXPECT_EQ(GenreInFileName(""), "");
}

}  // namespace
}  // namespace quillon
