#include "app/local_drives.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(AbsolutePath, HasNoDotsAndNoSlashAtItsEnd) {
    EXPECT_EQ(AbsolutePath("/a/b/../c/./d/"), "/a/c/d");
    EXPECT_EQ(AbsolutePath("/a/."), "/a");
    EXPECT_EQ(AbsolutePath("/"), "/");
    EXPECT_EQ(AbsolutePath("x"), std::filesystem::current_path() / "x");
    EXPECT_EQ(AbsolutePath("."), std::filesystem::current_path());
}

TEST(FreeDrive, GivesTheWantedLetterOrTheNextOne) {
    DriveTable drives("/host");
    EXPECT_EQ(FreeDrive(drives, 'D'), "D:");
    drives.Map("D:", "/a");
    drives.Map("e", "/b");
    EXPECT_EQ(FreeDrive(drives, 'D'), "F:");
    drives.Map("Y:", "/c");
    EXPECT_EQ(FreeDrive(drives, 'Y'), "F:") << "Z: is not taken, and the search begins anew";
}

TEST(MapPath, MapsTheRootSoThatThePathMeansTheFolder) {
    DriveTable drives("/host");
    EXPECT_TRUE(MapPath(drives, "E:\\Jukebox\\Music", "/srv/jukebox/music"));
    EXPECT_EQ(drives.LocalFolder("E:"), "/srv");
    EXPECT_TRUE(MapPath(drives, "F:", "/srv/jukebox/music"));
    EXPECT_EQ(drives.LocalFolder("F:"), "/srv/jukebox/music");
    EXPECT_TRUE(MapPath(drives, "\\\\nas\\share\\music", "/mnt/music"));
    EXPECT_EQ(drives.LocalFolder("\\\\nas\\share"), "/mnt");
}

TEST(MapPath, RefusesNamesThatAreNotTheFolders) {
    DriveTable drives("/host");
    EXPECT_FALSE(MapPath(drives, "E:\\Jukebox\\Songs", "/srv/jukebox/music"));
    EXPECT_FALSE(MapPath(drives, "E:\\a\\srv\\jukebox\\music", "/srv/jukebox/music"));
    EXPECT_FALSE(MapPath(drives, "music", "/srv/music"));
    EXPECT_FALSE(drives.LocalFolder("E:").has_value());
}

}  // namespace
}  // namespace quillon
