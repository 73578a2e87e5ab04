#include "playlists/pla_line.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

std::string Shown(const std::optional<PlaFields>& fields) {
    return fields ? std::string(fields->cdjid) + "|" + std::string(fields->index) : "none";
}

TEST(FirstTwoFields, AreThoseAroundTheFirstBlank) {
    EXPECT_EQ(Shown(FirstTwoFields("252E671073EC0007 3")), "252E671073EC0007|3");
    EXPECT_EQ(Shown(FirstTwoFields("252E671073EC0012 -1")), "252E671073EC0012|-1");
}

TEST(FirstTwoFields, AreTakenFromALineOfMoreFields) {
    EXPECT_EQ(Shown(FirstTwoFields("A0 3 x")), "A0|3");
    EXPECT_EQ(Shown(FirstTwoFields("A0 3 ")), "A0|3");
}

TEST(FirstTwoFields, MayBeEmpty) {
    EXPECT_EQ(Shown(FirstTwoFields("A0  3")), "A0|");
    EXPECT_EQ(Shown(FirstTwoFields(" A0 3")), "|A0");
    EXPECT_EQ(Shown(FirstTwoFields("A0 ")), "A0|");
}

TEST(FirstTwoFields, AreNoneWithoutABlank) {
    EXPECT_EQ(Shown(FirstTwoFields("A0")), "none");
    EXPECT_EQ(Shown(FirstTwoFields("A0\t3")), "none");
    EXPECT_EQ(Shown(FirstTwoFields("")), "none");
}

TEST(ExactlyTwoFields, AreNoneWhereThereAreMoreOrAnEmptyOne) {
    EXPECT_EQ(Shown(ExactlyTwoFields("A0 3")), "A0|3");
    EXPECT_EQ(Shown(ExactlyTwoFields("A0 3 x")), "none");
    EXPECT_EQ(Shown(ExactlyTwoFields("A0 3 ")), "none");
    EXPECT_EQ(Shown(ExactlyTwoFields("A0  3")), "none");
    EXPECT_EQ(Shown(ExactlyTwoFields(" A0 3")), "none");
    EXPECT_EQ(Shown(ExactlyTwoFields("A0 ")), "none");
    EXPECT_EQ(Shown(ExactlyTwoFields("A0")), "none");
    EXPECT_EQ(Shown(ExactlyTwoFields("")), "none");
}

TEST(WholeIndex, ReadsNumbersAsTheRuntimeDoes) {
    EXPECT_EQ(WholeIndex("3"), 3);
    EXPECT_EQ(WholeIndex("03"), 3);
    EXPECT_EQ(WholeIndex("-2"), -2);
    EXPECT_EQ(WholeIndex("3.0"), 3);
    EXPECT_EQ(WholeIndex("2147483647"), 2147483647);
}

TEST(WholeIndex, IsNothingForWhatIsNoTracksPosition) {
    for (const char* text : {"", "x", "1x", "1.5", "2147483648", "-2147483649", "1e300", "9e999"})
        EXPECT_FALSE(WholeIndex(text)) << text;
}

TEST(PlaLine, CountsTracksFromZero) {
    EXPECT_EQ(PlaLine("A0", 1), "A0 0");
    EXPECT_EQ(PlaLine("A0", 12), "A0 11");
}

TEST(PlaLine, HasMinusOneForAWholeAlbum) {
    EXPECT_EQ(PlaAlbumLine("A0"), "A0 -1");
}

}  // namespace
}  // namespace quillon
