#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/undo/way_back_world.h"

namespace quillon {
namespace {

using testing::IsEmpty;

TEST(WayBack, LeavesEverythingAsItWas) {
    World world;
    ASSERT_NE(world.before, world.after);
    EXPECT_THAT(world.Undo("2"), IsEmpty());
    EXPECT_EQ(world.State(), world.before);
}

TEST(WayBack, IsPlannedWithoutAChange) {
    World world;
    EXPECT_THAT(world.Plan(), IsEmpty());
    EXPECT_EQ(world.State(), world.after);
}

TEST(WayBack, CanBeTakenBackItself) {
    World world;
    world.Undo("2");
    world.GoBackBefore(world.undos);
    EXPECT_THAT(world.Undo("3"), IsEmpty());
    EXPECT_EQ(world.State(), world.after);
}

TEST(WayBack, HasNothingToDoTwice) {
    World world;
    world.Undo("2");
    EXPECT_THAT(world.Undo("3"), IsEmpty());
    EXPECT_THAT(world.undos.front().records, IsEmpty());
    EXPECT_EQ(world.State(), world.before);
}

TEST(WayBack, GoesOnWhereverItWasKilled) {
    for (const bool after : {false, true}) {
        int calls = 0;
        for (;; ++calls) {
            World world;
            const bool isKilled = !world.Undo("2", calls, after).empty();
            EXPECT_THAT(world.Undo("3"), IsEmpty()) << calls << after;
            EXPECT_EQ(world.State(), world.before) << calls << after;
            if (!isKilled) break;
        }
        EXPECT_GT(calls, 20);
    }
}

TEST(WayBack, GoesOnAfterTwoKills) {
    for (int calls = 0; calls < 24; calls += 4) {
        World world;
        world.Undo("2", calls, true);
        world.Undo("3", 2, false);
        EXPECT_THAT(world.Undo("4"), IsEmpty()) << calls;
        EXPECT_EQ(world.State(), world.before) << calls;
    }
}

/// The journal may reach the disk before a rename does that it tells of.
TEST(WayBack, LooksAtTheDiskAgainAfterAPowerCut) {
    int lost = 0;
    for (int calls = 1; calls < 1000; ++calls) {
        World world;
        if (world.Undo("2", calls, false).empty()) break;
        const auto state = world.State();
        if (state.contains("Music/lower.mp3")) {
            world.Rename("Music/lower.mp3", "Music/Lower.mp3");
            ++lost;
        }
        if (state.contains("Music/twin.mp3")) {
            world.Rename("Music/twin.mp3", "host/Removed/1twin.mp3");
            ++lost;
        }
        EXPECT_THAT(world.Undo("3"), IsEmpty()) << calls;
        EXPECT_EQ(world.State(), world.before) << calls;
    }
    EXPECT_GT(lost, 10);
}

/// What the journal does not tell of, nobody takes back.
TEST(WayBack, CanBeTakenBackItselfWhereverThePowerWasCut) {
    for (const bool after : {false, true}) {
        for (int calls = 0; calls < 1000; ++calls) {
            World world;
            const bool isCut = !world.Undo("2", calls, after, End::PowerCut).empty();
            world.GoBackBefore(world.undos);
            EXPECT_THAT(world.Undo("3"), IsEmpty()) << calls << after;
            EXPECT_EQ(world.State(), world.after) << calls << after;
            if (!isCut) break;
        }
    }
}

TEST(WayBack, GoesOnAndCanBeTakenBackWhereverThePowerWasCut) {
    for (const bool after : {false, true}) {
        for (int calls = after ? 1 : 0; calls < 1000; calls += 3) {
            World world;
            const bool isCut = !world.Undo("2", calls, after, End::PowerCut).empty();
            // Every other time it is cut off once more.
            if (calls % 2 == 0) world.Undo("3", calls / 2, !after, End::PowerCut);
            EXPECT_THAT(world.Undo("4"), IsEmpty()) << calls << after;
            EXPECT_EQ(world.State(), world.before) << calls << after;
            world.GoBackBefore(world.undos);
            EXPECT_THAT(world.Undo("5"), IsEmpty()) << calls << after;
            EXPECT_EQ(world.State(), world.after) << calls << after;
            if (!isCut) break;
        }
    }
}

TEST(WayBack, LetsStepsShareAFlushOfTheJournal) {
    World world;
    EXPECT_THAT(world.Undo("2"), IsEmpty());
    EXPECT_LT(world.flushes, world.records / 2);
}

TEST(WayBack, LeavesAFileWhereItsRowStays) {
    World world;
    world.held = {R"(d:\music\a3.mp3)"};
    const Outcomes refused = world.Undo("2");
    EXPECT_THAT(refused,
                testing::Contains(R"(D:\Music\a3.mp3: its row in the database was changed since)"));
    auto expected = world.before;
    expected["Music/a3.mp3"] = expected["Music/a.mp3"];
    expected.erase("Music/a.mp3");
    EXPECT_EQ(world.State(), expected);
}

TEST(WayBack, LeavesTheNewPagesWhereTheOldOnesWereNotKept) {
    World world;
    world.RemoveKept();
    EXPECT_THAT(world.Undo("2"),
                testing::Contains("the folder stays, with all that the run has made in it"));
    EXPECT_EQ(world.State()["host/HTML/Picker/index.asp"], "new page");
    EXPECT_EQ(world.State()["Music/a.mp3"], world.before["Music/a.mp3"]);
}

TEST(WayBack, LeavesOutWhatWasChangedSinceAndDoesTheRest) {
    World world;
    PathResolver& resolver = world.Resolver();
    PortableFiles files(resolver, [](LogKind, const std::string&) {});
    const auto writer = files.CreateText(R"(D:\Lists\Rock.pla)");
    writer->Write("edited");
    writer->Close();
    EXPECT_EQ(world.Undo("2"), Outcomes{"D:\\Lists\\Rock.pla has been changed since"});
    auto expected = world.before;
    expected["Lists/Rock.pla"] = "edited";
    EXPECT_EQ(world.State(), expected);
}

}  // namespace
}  // namespace quillon
