#include "run/left_out.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

TEST(LeftOut, CountsFilesByReason) {
    LeftOut leftOut;
    EXPECT_EQ(leftOut.Total(), 0U);
    leftOut.Note(LeftOutFor::DeeperFolder, R"(D:\Music\A\B\CD1)", 9);
    leftOut.Note(LeftOutFor::NoAlbum, R"(D:\Music\a.mp3)");
    leftOut.Note(LeftOutFor::DeeperFolder, R"(D:\Music\A\B\CD2)", 3);
    EXPECT_EQ(leftOut.Total(), 13U);
    EXPECT_EQ(leftOut.Of(LeftOutFor::DeeperFolder).files, 12U);
    EXPECT_EQ(leftOut.Of(LeftOutFor::DeeperFolder).places, 2U);
    EXPECT_THAT(leftOut.Of(LeftOutFor::DeeperFolder).paths,
                ElementsAre(R"(D:\Music\A\B\CD1)", R"(D:\Music\A\B\CD2)"));
    EXPECT_EQ(leftOut.Of(LeftOutFor::OtherType).files, 0U);
}

TEST(LeftOut, KeepsTheFirstPathsAlone) {
    LeftOut leftOut;
    for (int i = 0; i < 5000; ++i)
        leftOut.Note(LeftOutFor::OtherType, std::to_string(i) + ".flac");
    EXPECT_EQ(leftOut.Total(), 5000U);
    EXPECT_THAT(leftOut.Of(LeftOutFor::OtherType).paths, SizeIs(LeftOut::MostPaths));
    EXPECT_EQ(leftOut.Of(LeftOutFor::OtherType).paths[9], "9.flac");
}

}  // namespace
}  // namespace quillon
