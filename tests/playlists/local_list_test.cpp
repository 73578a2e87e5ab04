#include "playlists/local_list.h"

#include <gtest/gtest.h>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

class LocalListTest : public ::testing::Test {
  protected:
    LocalList Make(const std::string& target, const std::vector<M3uSong>& songs) {
        return MakeLocalList(world.files, target, songs);
    }

    fakes::FakeWorld world;
};

TEST_F(LocalListTest, NamesSongsAsSeenFromTheListWhereBothAreOnOneDisk) {
    EXPECT_EQ(
        Make(R"(D:\M3u\Rock.m3u8)", {{"#EXTINF:180,Alder - Dawn", R"(D:\Music\Alder\Dawn.mp3)"},
                                     {"#EXTINF:60,Björk - Jóga", R"(D:\M3u\Jóga.mp3)"}})
            .bytes,
        "#EXTM3U\n#EXTINF:180,Alder - Dawn\n../Music/Alder/Dawn.mp3\n"
        "#EXTINF:60,Björk - Jóga\nJóga.mp3\n");
}

TEST_F(LocalListTest, NamesSongsWholeWhereTheListIsElsewhere) {
    const LocalList list = Make(R"(X:\Rock.m3u8)", {{"#EXTINF:180,a", R"(D:\Music\a.mp3)"}});
    EXPECT_EQ(list.bytes, "#EXTM3U\n#EXTINF:180,a\n/drives/d/Music/a.mp3\n");
    EXPECT_EQ(list.unknownCount, 0U);
}

TEST_F(LocalListTest, KeepsPathsThatLeadNowhereHereAndCountsThem) {
    const LocalList list = Make(R"(D:\M3u\a.m3u8)", {{"#EXTINF:1,a", R"(Y:\a.mp3)"},
                                                     {"#EXTINF:1,b", R"(Y:\b.mp3)"},
                                                     {"#EXTINF:1,c", "http://radio/stream"}});
    EXPECT_EQ(list.bytes,
              "#EXTM3U\n#EXTINF:1,a\nY:\\a.mp3\n#EXTINF:1,b\nY:\\b.mp3\n#EXTINF:1,c\n"
              "http://radio/stream\n");
    EXPECT_EQ(list.unknownCount, 2U) << "an address is for the player to understand";
    EXPECT_EQ(list.unknown, R"(Y:\a.mp3)");
}

TEST_F(LocalListTest, DoesNotTakeANameForARemark) {
    EXPECT_EQ(Make(R"(D:\M3u\a.m3u8)", {{"#EXTINF:1,a", R"(D:\M3u\#1.mp3)"}}).bytes,
              "#EXTM3U\n#EXTINF:1,a\n./#1.mp3\n");
}

}  // namespace
}  // namespace quillon
