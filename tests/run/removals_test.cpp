#include "run/removals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class RemovalsTest : public ::testing::Test {
  protected:
    using Run = quillon::Run;  // not the one of ::testing::Test

    /// "a1", "a2" ...
    static std::vector<std::string> Names(std::size_t count) {
        std::vector<std::string> names;
        for (std::size_t i = 1; i <= count; ++i)
            names.push_back("a" + std::to_string(i));
        return names;
    }

    bool MayGo(Removable kind, std::size_t count, std::size_t outOf = 0,
               const std::string& doubt = "") {
        return removals.Allow(
            world.run, {.kind = kind, .names = Names(count), .outOf = outOf, .doubt = doubt});
    }

    fakes::FakeWorld world;
    Removals& removals = world.run.removals;
};

TEST_F(RemovalsTest, HoldSafeLimitsWhenNobodyHasSetAny) {
    const SafetyLimits limits = ReadSafetyLimits(world.host);
    EXPECT_TRUE(limits.Brake);
    EXPECT_EQ(limits.MaxRemovedTracks, 50);
    EXPECT_EQ(limits.MaxRemovedPercent, 20);
    EXPECT_EQ(limits.MaxRemovedFiles, 20);
    EXPECT_EQ(limits.MaxRemovedPlaylists, 5);
}

TEST_F(RemovalsTest, ReadTheirLimitsFromTheHostsSettings) {
    world.host.Set("MaxRemovedTracks", "7");
    world.host.Set("MaxRemovedPercent", "0");
    world.host.Set("MaxRemovedFiles", "99999999999");
    world.host.Set("MaxRemovedPlaylists", " 3 ");
    const SafetyLimits limits = ReadSafetyLimits(world.host);
    EXPECT_EQ(limits.MaxRemovedTracks, 7);
    EXPECT_EQ(limits.MaxRemovedPercent, 0);
    EXPECT_EQ(limits.MaxRemovedFiles, 2'147'483'647);
    EXPECT_EQ(limits.MaxRemovedPlaylists, 3);
    EXPECT_THAT(world.calls.Of({"GetINISetting Safety"}), testing::SizeIs(5));
    EXPECT_THAT(world.calls.Of({"GetINISetting Safety"}), testing::Each(HasSubstr("host.ini")));
}

TEST_F(RemovalsTest, FallBackToTheSafeLimitWhereAValueIsNone) {
    for (const char* const bad : {"", "many", "-1", "5O", "10 tracks", "0x10"}) {
        world.host.Set("MaxRemovedTracks", bad);
        world.host.Set("MaxRemovedPercent", bad);
        world.host.Set("MaxRemovedFiles", bad);
        world.host.Set("MaxRemovedPlaylists", bad);
        const SafetyLimits limits = ReadSafetyLimits(world.host);
        EXPECT_EQ(limits.MaxRemovedTracks, 50) << bad;
        EXPECT_EQ(limits.MaxRemovedPercent, 20) << bad;
        EXPECT_EQ(limits.MaxRemovedFiles, 20) << bad;
        EXPECT_EQ(limits.MaxRemovedPlaylists, 5) << bad;
    }
}

TEST_F(RemovalsTest, AreUnbrakedOnlyWhereTheSettingPlainlySaysSo) {
    for (const char* const off : {"0", "no", "Off", "FALSE", "0.0"}) {
        world.host.Set("Brake", off);
        EXPECT_FALSE(ReadSafetyLimits(world.host).Brake) << off;
    }
    for (const char* const on : {"1", "yes", "on", "true", "", "nö", "-1", "aus", "none"}) {
        world.host.Set("Brake", on);
        EXPECT_TRUE(ReadSafetyLimits(world.host).Brake) << on;
    }
}

TEST_F(RemovalsTest, OfTracksMayPassOneOfTheTwoLimitsButNotBoth) {
    EXPECT_TRUE(MayGo(Removable::Tracks, 50, 50)) << "not more than 50";
    removals = {};
    EXPECT_TRUE(MayGo(Removable::Tracks, 51, 255)) << "20 % are not more than 20 %";
    removals = {};
    EXPECT_FALSE(MayGo(Removable::Tracks, 51, 254));
    removals = {};
    EXPECT_TRUE(MayGo(Removable::Tracks, 20'000, 100'000));
    removals = {};
    EXPECT_FALSE(MayGo(Removable::Tracks, 20'001, 100'000));
}

TEST_F(RemovalsTest, OfTracksOfWhichThereAreNoneCountAsAll) {
    EXPECT_TRUE(MayGo(Removable::Tracks, 50, 0));
    removals = {};
    EXPECT_FALSE(MayGo(Removable::Tracks, 51, 0));
}

TEST_F(RemovalsTest, KnowAShareOfNothingAndOfAll) {
    removals.limits.MaxRemovedTracks = 0;
    removals.limits.MaxRemovedPercent = 0;
    EXPECT_FALSE(MayGo(Removable::Tracks, 1, 1'000'000)) << "no percent means no track at all";
    removals = {};
    removals.limits.MaxRemovedPercent = 100;
    EXPECT_TRUE(MayGo(Removable::Tracks, 1000, 1000)) << "more than all never go";
}

TEST_F(RemovalsTest, OfFilesAndPlaylistsHaveALimitOfTheirOwn) {
    EXPECT_TRUE(MayGo(Removable::MusicFiles, 20));
    EXPECT_TRUE(MayGo(Removable::Playlists, 5));
    EXPECT_FALSE(removals.Braked());
    removals = {};
    EXPECT_FALSE(MayGo(Removable::MusicFiles, 21));
    removals = {};
    EXPECT_FALSE(MayGo(Removable::Playlists, 6));
}

TEST_F(RemovalsTest, AddUpOverARun) {
    EXPECT_TRUE(MayGo(Removable::MusicFiles, 15));
    EXPECT_TRUE(MayGo(Removable::Playlists, 5)) << "each kind is counted by itself";
    EXPECT_TRUE(MayGo(Removable::MusicFiles, 5));
    EXPECT_FALSE(MayGo(Removable::MusicFiles, 1));
    EXPECT_THAT(world.host.log,
                ElementsAre(AllOf(HasSubstr("Nothing more is removed: 21 music files would go in "
                                            "all, 20 of them have gone, beyond MaxRemovedFiles=20"),
                                  HasSubstr("It would be a1."))));
}

TEST_F(RemovalsTest, MeasureTheShareAgainstWhatTheRunBeganWith) {
    EXPECT_TRUE(MayGo(Removable::Tracks, 50, 500));
    EXPECT_TRUE(MayGo(Removable::Tracks, 50, 450)) << "100 of the 500 there were";
    EXPECT_FALSE(MayGo(Removable::Tracks, 1, 400));
    EXPECT_THAT(world.host.log, ElementsAre(HasSubstr("101 tracks of 500 would go")));
}

TEST_F(RemovalsTest, InDoubtDoNotHappenWhateverTheNumbers) {
    EXPECT_FALSE(MayGo(Removable::Tracks, 1, 100'000, "no music was found in D:\\Music"));
    EXPECT_TRUE(removals.Braked());
    EXPECT_THAT(world.host.log,
                ElementsAre("Quillon: Nothing is removed: 1 track of 100000 would go, and no music "
                            "was found in D:\\Music. It would be a1. If that is meant, 'quillon "
                            "run --allow-removals' lets it through once; else see to the drives "
                            "and folders and run again"));
}

TEST_F(RemovalsTest, OfNothingAreNeverInDoubt) {
    EXPECT_TRUE(MayGo(Removable::Tracks, 0, 0, "no music was found in D:\\Music"));
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(RemovalsTest, OnceBrakedStaySo) {
    EXPECT_FALSE(MayGo(Removable::Playlists, 6));
    EXPECT_FALSE(MayGo(Removable::Playlists, 1));
    EXPECT_FALSE(MayGo(Removable::Tracks, 1, 1000));
    EXPECT_FALSE(MayGo(Removable::MusicFiles, 1));
    EXPECT_TRUE(removals.Braked());
    EXPECT_EQ(world.host.log.size(), 1U) << "one clear line says it";
    EXPECT_EQ(world.run.counts.errors, 1U);
}

TEST_F(RemovalsTest, TellTheNumbersTheLimitsAndTheFirstTenNames) {
    EXPECT_FALSE(MayGo(Removable::Tracks, 60, 100));
    ASSERT_EQ(world.host.log.size(), 1U);
    EXPECT_THAT(
        world.host.log.front(),
        AllOf(HasSubstr("Nothing is removed: 60 tracks of 100 would go, beyond MaxRemovedTracks=50 "
                        "and MaxRemovedPercent=20 in host.ini. It would be a1, a2, a3, a4, a5, a6, "
                        "a7, a8, a9, a10 and 50 more. If"),
              Not(HasSubstr("a11"))));
}

TEST_F(RemovalsTest, NameAllWhereTheyAreTen) {
    removals.limits.MaxRemovedPlaylists = 9;
    EXPECT_FALSE(MayGo(Removable::Playlists, 10));
    EXPECT_THAT(world.host.log,
                ElementsAre(HasSubstr("10 playlists would go, beyond MaxRemovedPlaylists=9 in "
                                      "host.ini. It would be a1, a2, a3, a4, a5, a6, a7, a8, a9, "
                                      "a10. If")));
}

TEST_F(RemovalsTest, AllHappenWithoutABrakeOrWhenAPersonAllowsThem) {
    removals.limits.Brake = false;
    EXPECT_TRUE(MayGo(Removable::Tracks, 1000, 1000, "no music was found in D:\\Music"));
    removals = {};
    removals.allAllowed = true;
    EXPECT_TRUE(MayGo(Removable::Tracks, 1000, 1000, "no music was found in D:\\Music"));
    EXPECT_TRUE(MayGo(Removable::MusicFiles, 1000));
    EXPECT_TRUE(MayGo(Removable::Playlists, 1000));
    EXPECT_FALSE(removals.Braked());
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(RemovalsTest, KeepTheFirstNamesOfWhatHasGone) {
    for (const std::string& name : Names(12))
        removals.Note(Removable::MusicFiles, name);
    EXPECT_EQ(removals.Of(Removable::MusicFiles).count, 12U);
    EXPECT_THAT(removals.Of(Removable::MusicFiles).names, testing::ElementsAreArray(Names(10)));
    EXPECT_EQ(removals.Of(Removable::Tracks).count, 0U);
}

}  // namespace
}  // namespace quillon
