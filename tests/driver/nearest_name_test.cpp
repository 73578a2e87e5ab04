#include "driver/nearest_name.h"

#include <array>
#include <gtest/gtest.h>
#include <string_view>

namespace quillon {
namespace {

TEST(NearestName, IsTheOneThatTheFewestLettersTellApart) {
    constexpr std::array<std::string_view, 4> Names{"PlayListPath", "PlayListPath2", "ID3Write",
                                                    "AddFiles"};
    EXPECT_EQ(NearestName("PlaylistPth", Names), "PlayListPath");
    EXPECT_EQ(NearestName("PlayListPth2", Names), "PlayListPath2");
    EXPECT_EQ(NearestName("id3wrtie", Names), "ID3Write");
    EXPECT_EQ(NearestName("AddFile", Names), "AddFiles");
}

TEST(NearestName, TakesTwoSwappedLettersForOneSlip) {
    constexpr std::array<std::string_view, 2> Commands{"check", "db"};
    EXPECT_EQ(NearestName("chekc", Commands), "check");
    EXPECT_EQ(NearestName("bd", Commands), "db");
    EXPECT_EQ(NearestName("hceck", Commands), "check");
    EXPECT_EQ(NearestName("hcekc", Commands), "");
}

TEST(NearestName, IsEmptyWhereNothingIsNear) {
    constexpr std::array<std::string_view, 2> Names{"ID3Write", "AddFiles"};
    EXPECT_EQ(NearestName("Colour", Names), "");
    EXPECT_EQ(NearestName("", Names), "");
    EXPECT_EQ(NearestName("AddFiles", {}), "");
}

}  // namespace
}  // namespace quillon
