#include <gtest/gtest.h>

#include "tests/app/check_fixture.h"

namespace quillon {
namespace {

class CheckSafety : public CheckFixture {
  protected:
    /// Replaces [Safety], which is the last section.
    void SetSafety(const std::string& lines) const {
        const std::string host = Read("shelf/host.ini");
        const std::size_t section = std::min(host.find("\n[Safety]\n"), host.size());
        Write("shelf/host.ini", host.substr(0, section) + "\n[Safety]\n" + lines);
    }
    std::string Brake() const {
        const std::string out = Check().out;
        const std::size_t start = out.find("\nBrake ") + 1;
        return out.substr(start, out.find('\n', start) - start);
    }
};

TEST_F(CheckSafety, TellsHowMuchARunMayRemove) {
    constexpr const char* Standard =
        "Brake            on: more than 50 tracks and 20 % of all, 20 music files or 5 playlists";
    EXPECT_EQ(Brake(), Standard);
    SetSafety("");
    EXPECT_EQ(Brake(), Standard);
    SetSafety(
        "MaxRemovedTracks=7\nMaxRemovedPercent=3\nMaxRemovedFiles=2\nMaxRemovedPlaylists=1\n");
    EXPECT_EQ(
        Brake(),
        "Brake            on: more than 7 tracks and 3 % of all, 2 music files or 1 playlists");
    EXPECT_EQ(Cautions(), "");
}

TEST_F(CheckSafety, WarnsWhereTheBrakeIsOff) {
    SetSafety("Brake=No\n");
    EXPECT_EQ(Brake(), "Brake            off");
    EXPECT_EQ(Check().status, 0);
    EXPECT_TRUE(Has(Cautions(), "The brake on loss is off (Brake=No in [Safety] of host.ini)"));
}

TEST_F(CheckSafety, FindsValuesThatAreNone) {
    SetSafety("Brake=perhaps\nMaxRemovedTracks=many\nMaxRemovedPercent=-3\nMaxRemovedFiles=2.5\n");
    EXPECT_EQ(Brake(),
              "Brake            on: more than 50 tracks and 20 % of all, 2 music files or 5 "
              "playlists");
    EXPECT_EQ(Cautions(),
              "  - Brake in [Safety] of host.ini is \"perhaps\", which is neither yes nor no; the "
              "brake is on. Write 1 or 0.\n"
              "  - MaxRemovedTracks in [Safety] of host.ini is \"many\", which is not a whole "
              "number of 0 or more and counts as 50. Correct it, or delete the line to get 50.\n"
              "  - MaxRemovedPercent in [Safety] of host.ini is \"-3\", which is not a whole "
              "number of 0 or more and counts as 20. Correct it, or delete the line to get 20.\n"
              "  - MaxRemovedFiles in [Safety] of host.ini is \"2.5\", which is not a whole number "
              "of 0 or more and counts as 2. Correct it, or delete the line to get 20.");
}

TEST_F(CheckSafety, FindsNamesThatNothingReads) {
    SetSafety("MaxRemovedTrack=0\nColour=red\n");
    EXPECT_EQ(Cautions(),
              "  - host.ini has MaxRemovedTrack=0 in [Safety], which nothing reads. If "
              "MaxRemovedTracks is meant, correct the name.\n"
              "  - host.ini has Colour=red in [Safety], which nothing reads. Delete the line.");
}

}  // namespace
}  // namespace quillon
