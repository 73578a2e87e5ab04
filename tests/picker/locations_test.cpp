#include "picker/locations.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

constexpr const char* App = R"(C:\HomeSeer)";

TEST(LocatePicker, PutsPagesBesideTheCovers) {
    const PickerLocations locations = LocatePicker(App, "/Quillon/albumcovers/");
    EXPECT_EQ(locations.webCoverFolder, R"(C:\HomeSeer\HTML\Quillon\albumcovers\)");
    EXPECT_EQ(locations.pickerBaseFolder, R"(C:\HomeSeer\HTML\Quillon)");
    EXPECT_EQ(locations.pageFolder, R"(C:\HomeSeer\HTML\Quillon\AlbumPicker)");
}

TEST(LocatePicker, UsesTheWebFolderItselfForCoversDirectlyInIt) {
    const PickerLocations locations = LocatePicker(App, "/covers/");
    EXPECT_EQ(locations.webCoverFolder, R"(C:\HomeSeer\HTML\covers\)");
    EXPECT_EQ(locations.pickerBaseFolder, R"(C:\HomeSeer\HTML)");
    EXPECT_EQ(locations.pageFolder, R"(C:\HomeSeer\HTML\AlbumPicker)");
}

TEST(LocatePicker, FollowsADeepCoverPath) {
    EXPECT_EQ(LocatePicker(App, "/a/b/c/").pageFolder, R"(C:\HomeSeer\HTML\a\b\AlbumPicker)");
}

TEST(LocatePicker, NeverLeavesTheWebFolder) {
    for (const char* const coverPath : {"", "/"}) {
        const PickerLocations locations = LocatePicker(App, coverPath);
        EXPECT_EQ(locations.webCoverFolder, R"(C:\HomeSeer\HTML\)") << coverPath;
        EXPECT_EQ(locations.pageFolder, R"(C:\HomeSeer\HTML\Quillon\AlbumPicker)") << coverPath;
    }
}

TEST(PageFileName, HasTheNumberOfThePage) {
    EXPECT_EQ(PageFileName(0), "AlbumPicker0.asp");
    EXPECT_EQ(PageFileName(12), "AlbumPicker12.asp");
}

}  // namespace
}  // namespace quillon
