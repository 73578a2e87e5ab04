#include "run/disc_folders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace quillon {
namespace {

using ::testing::ElementsAre;

TEST(DiscOfFolder, IsTheNumberBehindTheWordForADisc) {
    EXPECT_EQ(DiscOfFolder("CD1"), 1);
    EXPECT_EQ(DiscOfFolder("cd 2"), 2);
    EXPECT_EQ(DiscOfFolder("Disc_3"), 3);
    EXPECT_EQ(DiscOfFolder("DISK-04"), 4);
    EXPECT_EQ(DiscOfFolder("Disc - 10"), 10);
}

TEST(DiscOfFolder, IsNothingOfAnyOtherName) {
    for (const char* const name : {"", "CD", "CD0", "Disc II", "CD1 Live", "CD 1 of 2", "CD100",
                                   "MyCD1", "Disco 1", "1", "CD.1", "Disc One"})
        EXPECT_EQ(DiscOfFolder(name), std::nullopt) << name;
}

TEST(TakeDiscFolders, TakesThemByNumberAndLeavesTheOthers) {
    std::vector<std::string> names{"Scans", "CD10", "cd 2", "CD2", "Live"};
    std::vector<std::string> paths;
    for (const DiscFolder& disc : TakeDiscFolders(R"(D:\A\B)", names))
        paths.push_back(std::to_string(disc.disc) + ' ' + disc.path);
    EXPECT_THAT(paths, ElementsAre(R"(2 D:\A\B\cd 2)", R"(2 D:\A\B\CD2)", R"(10 D:\A\B\CD10)"));
    EXPECT_THAT(names, ElementsAre("Scans", "Live"));
}

}  // namespace
}  // namespace quillon
