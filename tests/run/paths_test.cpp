#include "run/paths.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(AddBackslash, AppendsOneUnlessItIsThere) {
    EXPECT_EQ(AddBackslash(R"(C:\Lists)"), R"(C:\Lists\)");
    EXPECT_EQ(AddBackslash(R"(C:\Lists\)"), R"(C:\Lists\)");
    EXPECT_EQ(AddBackslash(""), "\\");
}

TEST(FolderPath, IsWhatAListingWouldGive) {
    EXPECT_EQ(FolderPath(R"(D:\Music)"), R"(D:\Music)");
    EXPECT_EQ(FolderPath("D:/Music//"), R"(D:\Music)");
    EXPECT_EQ(FolderPath(R"(\\nas\music\)"), R"(\\nas\music)");
    EXPECT_EQ(FolderPath("D:/"), "D:\\");
    EXPECT_EQ(FolderPath(""), "");
}

TEST(PlainPath, HasSingleBackslashesForSlashesOfAnyKindAndNumber) {
    EXPECT_EQ(PlainPath("D:/Lists/"), R"(D:\Lists\)");
    EXPECT_EQ(PlainPath(R"(D:\Lists\\)"), R"(D:\Lists\)");
    EXPECT_EQ(PlainPath(R"(D:\\Old//Lists)"), R"(D:\Old\Lists)");
    EXPECT_EQ(PlainPath(R"(P:\\)"), R"(P:\)");
}

TEST(PlainPath, KeepsTheTwoBackslashesOfAShare) {
    EXPECT_EQ(PlainPath(R"(\\nas\music)"), R"(\\nas\music)");
    EXPECT_EQ(PlainPath("//nas/music/"), R"(\\nas\music\)");
    EXPECT_EQ(PlainPath(R"(\\\\nas\\music)"), R"(\\nas\music)");
}

TEST(PlainPath, LeavesWhatIsWellFormedAlone) {
    for (const char* const path : {R"(D:\Music)", R"(D:\Music\)", "D:", R"(\)", "", " a b "})
        EXPECT_EQ(PlainPath(path), path);
}

TEST(IsDriveRoot, IsTrueForAWholeDriveOrShareAlone) {
    for (const char* const root : {R"(P:\)", "P:", "P:/", R"(\\nas\lists)", R"(\\nas\lists\)"})
        EXPECT_TRUE(IsDriveRoot(root)) << root;
    for (const char* const other : {R"(P:\Lists)", R"(P:\Lists\)", R"(\\nas\lists\a)", "\\", ""})
        EXPECT_FALSE(IsDriveRoot(other)) << other;
}

TEST(FixPath, TurnsBackslashesAndAddsSlashesAtBothEnds) {
    EXPECT_EQ(FixPath(R"(Quillon\albumcovers)"), "/Quillon/albumcovers/");
}

TEST(FixPath, AddsOnlyWhatIsMissing) {
    EXPECT_EQ(FixPath("/covers"), "/covers/");
    EXPECT_EQ(FixPath("covers/"), "/covers/");
    EXPECT_EQ(FixPath("/covers/"), "/covers/");
    EXPECT_EQ(FixPath("\\"), "/");
}

TEST(FixPath, LeavesAnEmptyPathEmpty) {
    EXPECT_EQ(FixPath(""), "");
}

TEST(GetDrive, IsWhatStandsBeforeTheFirstBackslash) {
    EXPECT_EQ(GetDrive(R"(D:\music\a.mp3)"), "D:");
    EXPECT_EQ(GetDrive(R"(music\a.mp3)"), "music");
}

TEST(GetDrive, IsEmptyForAPathWithoutBackslash) {
    EXPECT_EQ(GetDrive("a.mp3"), "");
}

TEST(GetDrive, IsServerAndShareOfANetworkPath) {
    EXPECT_EQ(GetDrive(R"(\\server\share\music\a.mp3)"), R"(\\server\share)");
}

TEST(GetDrive, IsEmptyForAnUnfinishedNetworkPath) {
    EXPECT_EQ(GetDrive(R"(\\server\share)"), "");
    EXPECT_EQ(GetDrive(R"(\\server)"), "");
    EXPECT_EQ(GetDrive(R"(\\)"), "");
}

TEST(GetDrive, LooksForTheNetworkMarkAnywhere) {
    EXPECT_EQ(GetDrive(R"(x:\\server\share\a.mp3)"), R"(x:\\server\share)");
}

TEST(ChangeDrive, ReplacesTheDriveEverywhereInThePath) {
    EXPECT_EQ(ChangeDrive("M:", R"(D:\music\a.mp3)"), R"(M:\music\a.mp3)");
    EXPECT_EQ(ChangeDrive("M:", R"(\\nas\share\a.mp3)"), R"(M:\a.mp3)");
    EXPECT_EQ(ChangeDrive("tunes", R"(music\music\a.mp3)"), R"(tunes\tunes\a.mp3)");
}

TEST(ChangeDrive, LeavesAPathWithoutDrive) {
    EXPECT_EQ(ChangeDrive("M:", "a.mp3"), "a.mp3");
}

TEST(GetBaseName, IsTheNameWithoutFoldersAndTheLastExtension) {
    EXPECT_EQ(GetBaseName(R"(D:\Music\a.b.mp3)"), "a.b");
    EXPECT_EQ(GetBaseName("rtsp://host/spinlinks/000-Rock-000.rm"), "000-Rock-000");
    EXPECT_EQ(GetBaseName("name"), "name");
    EXPECT_EQ(GetBaseName(".mp3"), "");
    EXPECT_EQ(GetBaseName(R"(D:\folder.d\name\)"), "name");
    EXPECT_EQ(GetBaseName(R"(\/)"), "");
    EXPECT_EQ(GetBaseName(""), "");
}

}  // namespace
}  // namespace quillon
