#include "bench/run_record.h"

#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>

#include "tests/outside/temporary_folder.h"

namespace quillon::bench {
namespace {

TEST(PhaseClock, GivesEachPhaseTheTimeUntilTheNextOneStarts) {
    PhaseClock clock;
    clock.Line("Quillon Shelfkeeper, 1.0.0", 0.25);
    clock.Line("1. Capture Playlists", 1.0);
    clock.Line("   Quillon: 4. Add Folder Tracks to Library", 2.0);
    clock.Line("4. Add Folder Tracks to Library", 3.0);
    const std::vector<PhaseTime> phases = clock.Finish(7.0);
    ASSERT_EQ(phases.size(), 3U);
    EXPECT_EQ(phases[0].seconds, 1.0);
    EXPECT_EQ(phases[1].name, "1. Capture Playlists");
    EXPECT_EQ(phases[1].seconds, 2.0);
    EXPECT_EQ(phases[2].name, "4. Add Folder Tracks to Library");
    EXPECT_EQ(phases[2].seconds, 4.0);
}

TEST(MedianPhases, TakesTheMedianOfEachPhase) {
    const auto phases = MedianPhases({{{.name = "a", .seconds = 1}, {.name = "b", .seconds = 9}},
                                      {{.name = "a", .seconds = 5}, {.name = "b", .seconds = 8}},
                                      {{.name = "a", .seconds = 3}, {.name = "b", .seconds = 7}}});
    ASSERT_EQ(phases.size(), 2U);
    EXPECT_EQ(phases[0].seconds, 3.0);
    EXPECT_EQ(phases[1].seconds, 8.0);
}

TEST(CallCounts, KnowsWhatWasCountedAndNothingElse) {
    const outside::TemporaryFolder folder;
    std::ofstream(folder.Path() / "counts") << "syncs 6\nmusic.opened 12\n";
    const CallCounts counts(folder.Path() / "counts");
    EXPECT_EQ(counts["syncs"], 6U);
    EXPECT_EQ(counts["music.opened"], 12U);
    EXPECT_THROW(counts["music"], std::runtime_error);
}

}  // namespace
}  // namespace quillon::bench
