#include "id3/same_sound.h"

#include <gtest/gtest.h>
#include <string>

#include "platform/failure.h"
#include "tests/support/fakes.h"
#include "tests/support/sound_file.h"

namespace quillon {
namespace {

class HaveSameSoundTest : public ::testing::Test {
  protected:
    bool Compare(const std::string& first, const std::string& second) {
        world.files.AddFile("D:\\a.mp3", first);
        world.files.AddFile("D:\\b.mp3", second);
        return HaveSameSound(world.files, "D:\\a.mp3", "D:\\b.mp3");
    }
    static std::string Tag(const std::string& song) {
        support::RawTag tag;
        tag.song = song;
        return support::TagBytes(tag);
    }
    /// A version 2 tag with so many bytes behind its header.
    static std::string Version2(std::size_t size, bool footer = false) {
        const auto seven = [size](unsigned shift) {
            return static_cast<char>((size >> shift) & 0x7FU);
        };
        std::string tag = std::string("ID3\x04\0", 5) + (footer ? '\x10' : '\0');
        tag += {seven(21), seven(14), seven(7), seven(0)};
        return tag + std::string(size + (footer ? 10 : 0), 'v');
    }
    static std::string Ape(std::size_t size, bool header) {
        const std::size_t whole = size + 32;
        std::string ends = std::string("APETAGEX") + std::string("\xD0\x07\0\0", 4);
        for (unsigned shift = 0; shift < 32; shift += 8)
            ends += static_cast<char>((whole >> shift) & 0xFFU);
        ends += std::string("\1\0\0\0\0\0\0", 7) + (header ? '\x80' : '\0') + std::string(8, '\0');
        return (header ? ends : "") + std::string(size, 'a') + ends;
    }

    fakes::FakeWorld world;
    std::string sound = std::string(200'000, 's') + "end";
};

TEST_F(HaveSameSoundTest, OfFilesThatAreTheSame) {
    EXPECT_TRUE(Compare(sound, sound));
    EXPECT_TRUE(Compare("", ""));
}

TEST_F(HaveSameSoundTest, WhateverTheirTags) {
    EXPECT_TRUE(Compare(sound + Tag("Dawn"), sound));
    EXPECT_TRUE(Compare(sound + Tag("Dawn"), sound + Tag("Dusk")));
    EXPECT_TRUE(Compare(Version2(300) + sound + Tag("Dawn"), sound));
    EXPECT_TRUE(Compare(Version2(2000, true) + sound, Version2(5) + sound));
    EXPECT_TRUE(Compare(sound + Ape(50, true) + Tag("Dawn"), sound + Tag("Dusk")));
    EXPECT_TRUE(Compare(sound + Ape(70, false), sound));
}

TEST_F(HaveSameSoundTest, NotWhereAByteDiffers) {
    for (const std::size_t at : {std::size_t{0}, std::size_t{70'000}, sound.size() - 1}) {
        std::string other = sound;
        other[at] = 'x';
        EXPECT_FALSE(Compare(sound + Tag("Dawn"), other + Tag("Dawn"))) << at;
    }
}

TEST_F(HaveSameSoundTest, NotWhereOneIsLonger) {
    EXPECT_FALSE(Compare(sound + Tag("Dawn"), sound + "s" + Tag("Dawn")));
    EXPECT_FALSE(Compare(sound, ""));
}

TEST_F(HaveSameSoundTest, TakesWhatIsNoTagForSound) {
    EXPECT_FALSE(Compare("ID3" + sound, sound));
    const std::string tooLarge = std::string("ID3\x04\0\0\x7F\x7F\x7F\x7F", 10);
    EXPECT_FALSE(Compare(tooLarge + sound, sound));
    EXPECT_TRUE(Compare(tooLarge + sound, tooLarge + sound));
    EXPECT_FALSE(Compare(sound + "APETAGEX" + std::string(24, '\0'), sound));
    EXPECT_FALSE(Compare("TAG", "TAT"));
}

TEST_F(HaveSameSoundTest, OpensEachFileOnce) {
    sound = std::string(1'000'000, 's');
    EXPECT_TRUE(Compare(sound, sound));
    EXPECT_EQ(world.calls.Of({"OpenBinary"}).size(), 2U);
}

TEST_F(HaveSameSoundTest, FailsWhereAFileCannotBeRead) {
    world.files.AddFile("D:\\a.mp3", sound);
    EXPECT_THROW(HaveSameSound(world.files, "D:\\a.mp3", "D:\\b.mp3"), Failure);
}

}  // namespace
}  // namespace quillon
