#include "platform/portable/drive_table.h"

#include <gtest/gtest.h>

#include "tests/platform/failure_of.h"

namespace quillon {
namespace {

TEST(DriveTable, FindsRootsWithoutLetterCase) {
    DriveTable drives("/host");
    drives.Map("D", "/srv/jukebox");
    drives.Map("\\\\NAS\\Music", "/mnt/nas/");
    EXPECT_EQ(drives.LocalFolder("D:"), "/srv/jukebox");
    EXPECT_EQ(drives.LocalFolder("d:"), "/srv/jukebox");
    EXPECT_EQ(drives.LocalFolder("\\\\nas\\music"), "/mnt/nas");
    EXPECT_EQ(drives.LocalFolder("E:"), std::nullopt);
    EXPECT_EQ(drives.LocalFolder("\\\\nas\\video"), std::nullopt);
}

TEST(DriveTable, LocalRootIsZUnlessMapped) {
    DriveTable drives("/host");
    EXPECT_EQ(drives.LocalFolder("Z:"), "");
    EXPECT_EQ(drives.WindowsPathOf("/srv/x.mp3"), "Z:\\srv\\x.mp3");
    EXPECT_EQ(drives.WindowsPathOf("/"), "Z:\\");
    drives.Map("Z:", "/srv");
    EXPECT_EQ(drives.LocalFolder("Z:"), "/srv");
    EXPECT_EQ(drives.WindowsPathOf("/etc"), std::nullopt);
}

TEST(DriveTable, RelativeFoldersStartAtTheHostFolder) {
    DriveTable drives("/host/here");
    drives.Map("D", "music");
    drives.Map("E", "../other/.");
    drives.Map("F", ".");
    EXPECT_EQ(drives.LocalFolder("D:"), "/host/here/music");
    EXPECT_EQ(drives.LocalFolder("E:"), "/host/other");
    EXPECT_EQ(drives.LocalFolder("F:"), "/host/here");
}

TEST(DriveTable, PrefersTheNearestFolderOnTheWayBack) {
    DriveTable drives("/host");
    drives.Map("D", "/srv");
    drives.Map("M", "/srv/music");
    EXPECT_EQ(drives.WindowsPathOf("/srv/music/a/x.mp3"), "M:\\a\\x.mp3");
    EXPECT_EQ(drives.WindowsPathOf("/srv/music"), "M:\\");
    EXPECT_EQ(drives.WindowsPathOf("/srv/musical"), "D:\\musical");
    EXPECT_EQ(drives.WindowsPathOf("/srv/./x/../y"), "D:\\y");
    EXPECT_EQ(drives.WindowsPathOf("/mnt"), "Z:\\mnt");
}

TEST(DriveTable, LeadsBackOnlyThroughNamesThatWindowsHolds) {
    DriveTable drives("/host");
    drives.Map("D", "/srv/a:b");
    EXPECT_EQ(drives.WindowsPathOf("/srv/a:b/x"), "D:\\x");
    EXPECT_EQ(drives.WindowsPathOf("/srv/c:d/x"), std::nullopt);
}

TEST(DriveTable, RefusesLinesThatAreNoDrive) {
    DriveTable drives("/host");
    for (const char* const root : {"", "Music", "DD", "D:\\sub", "\\\\nas"})
        EXPECT_EQ(FailureOf([&] { drives.Map(root, "/srv"); }),
                  "Invalid procedure call or argument: drive " + std::string(root) + "=/srv");
    EXPECT_NE(FailureOf([&] { drives.Map("D", ""); }), "");
}

TEST(DriveTable, GivesAnUnreachableFolderALetter) {
    DriveTable drives("/host");
    drives.MakeReachable("/srv/plain");
    EXPECT_EQ(drives.WindowsPathOf("/srv/plain"), "Z:\\srv\\plain");
    drives.Map("Y", "/mnt");
    drives.MakeReachable("/srv/a:b");
    EXPECT_EQ(drives.WindowsPathOf("/srv/a:b"), "X:\\");
    for (char letter = 'A'; letter <= 'Z'; ++letter)
        drives.Map(std::string(1, letter), "/mnt");
    EXPECT_EQ(FailureOf([&] { drives.MakeReachable("/srv"); }), "Path not found: /srv");
}

}  // namespace
}  // namespace quillon
