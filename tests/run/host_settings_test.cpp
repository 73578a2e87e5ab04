#include "run/host_settings.h"

#include <gtest/gtest.h>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

TEST(DownloadHost, IsWhatTheHostSays) {
    fakes::FakeWorld world;
    world.host.Set("Host", "radio.example");
    EXPECT_EQ(DownloadHost(world.host), "radio.example");
}

TEST(DownloadHost, IsThisMachineWhereTheHostSaysNothing) {
    fakes::FakeWorld world;
    EXPECT_EQ(DownloadHost(world.host), "localhost");
    world.host.Set("Host", "");
    EXPECT_EQ(DownloadHost(world.host), "localhost");
}

TEST(StreamLink, PutsWhatTellsSongsApartIntoTheMiddle) {
    EXPECT_EQ(StreamLink("radio.example", "17"), "rtsp://radio.example/spinlinks/000-17-000.rm");
    EXPECT_EQ(StreamLink("", ""), "rtsp:///spinlinks/000--000.rm");
}

TEST(CoverTreeScan, IsOffWhereTheHostSaysNothing) {
    fakes::FakeWorld world;
    EXPECT_FALSE(ReadCoverTreeScan(world.host).ScanLibrary);
    EXPECT_EQ(ReadCoverTreeScan(world.host).ReservedFolder, "");
}

TEST(CoverTreeScan, IsOnForEveryWayOfSayingYes) {
    fakes::FakeWorld world;
    for (const char* yes : {"1", "-1", "true", "Yes", "ON"}) {
        world.host.Set("ScanLibrary", yes);
        EXPECT_TRUE(ReadCoverTreeScan(world.host).ScanLibrary) << yes;
    }
    for (const char* no : {"0", "false", "no", "", "perhaps"}) {
        world.host.Set("ScanLibrary", no);
        EXPECT_FALSE(ReadCoverTreeScan(world.host).ScanLibrary) << no;
    }
}

TEST(CoverTreeScan, TakesTheReservedFolderAsWritten) {
    fakes::FakeWorld world;
    world.host.Set("ReservedFolder", "Scans & more");
    EXPECT_EQ(ReadCoverTreeScan(world.host).ReservedFolder, "Scans & more");
}

}  // namespace
}  // namespace quillon
