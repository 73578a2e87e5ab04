#include "run/run.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

TEST(RunProgress, IsUnknownUntilATotalIsTold) {
    fakes::FakeWorld world;
    EXPECT_EQ(world.run.form.progress.total, 0U);
    world.run.CountDone();
    EXPECT_EQ(world.run.form.progress.done, 0U);
}

TEST(RunProgress, NeverPassesItsTotal) {
    fakes::FakeWorld world;
    world.run.StartCounting(2);
    for (int i = 0; i < 5; ++i)
        world.run.CountDone();
    EXPECT_EQ(world.run.form.progress.done, 2U);
    EXPECT_EQ(world.run.form.progress.total, 2U);
}

TEST(RunProgress, BeginsAnewWithTheNextTotal) {
    fakes::FakeWorld world;
    world.run.StartCounting(2);
    world.run.CountDone();
    world.run.StartCounting(7);
    EXPECT_EQ(world.run.form.progress.done, 0U);
    EXPECT_EQ(world.run.form.progress.total, 7U);
}

TEST(RunEvents, TellTheFacesThatAbortWasNoticed) {
    fakes::FakeWorld world;
    world.run.ProcessEvents();
    EXPECT_FALSE(world.run.form.aborting);
    world.window.abortPressed = true;
    world.run.ProcessEvents();
    EXPECT_TRUE(world.run.form.aborting);
}

/// A run with an open database that can be refused its flushes.
struct OpenWorld : fakes::FakeWorld {
    OpenWorld() { run.connection = database.Open("x"); }
};

TEST(RunReport, TellsOfRowsOnlyWhatTheDatabaseHoldsForGood) {
    OpenWorld world;
    quillon::Run& run = world.run;
    run.counts.tracksAdded = 2;
    run.removals.Note(Removable::Tracks, "a");
    EXPECT_EQ(run.Report().counts.tracksAdded, 0U);
    EXPECT_EQ(run.Report().gone[0].count, 0U);
    EXPECT_FALSE(run.Report().saved);
    run.Flush();
    EXPECT_EQ(run.Report().counts.tracksAdded, 2U);
    EXPECT_EQ(run.Report().gone[0].count, 1U);
    EXPECT_TRUE(run.Report().saved);
    EXPECT_EQ(world.calls.Of({"Flush"}).size(), 1U);

    run.counts.tracksAdded = 5;
    run.counts.albumsRemoved = 1;
    run.removals.Note(Removable::Tracks, "b");
    world.calls.Refuse("Flush", FailureNumber::DiskFull, "jukebox.mdb");
    EXPECT_THROW(run.Flush(), Failure);
    EXPECT_EQ(run.Report().counts.tracksAdded, 2U);
    EXPECT_EQ(run.Report().counts.albumsRemoved, 0U);
    EXPECT_EQ(run.Report().gone[0].names, std::vector<std::string>{"a"});
    EXPECT_FALSE(run.Report().saved);
}

TEST(RunReport, TellsWhetherTheBrakeHeld) {
    OpenWorld world;
    EXPECT_FALSE(world.run.Report().braked);
    world.run.removals.Allow(world.run, {.names = {"a"}, .doubt = "no music was found in D:\\"});
    EXPECT_TRUE(world.run.Report().braked);
}

TEST(RunReport, TellsOfFilesWhatHappenedToThem) {
    OpenWorld world;
    world.run.counts = {.tagsWritten = 1,
                        .playlistsWritten = 2,
                        .playlistsRewritten = 3,
                        .playlistsRemoved = 4,
                        .filesRenamed = 5,
                        .filesRemoved = 6,
                        .filesCopied = 7,
                        .pagesWritten = 8,
                        .leftOut = 9,
                        .errors = 10};
    world.run.removals.Note(Removable::MusicFiles, "a.mp3");
    world.run.removals.Note(Removable::Playlists, "a.pla");
    const RunReport report = world.run.Report();
    EXPECT_TRUE(report.saved) << "no row was changed";
    EXPECT_EQ(report.counts.tagsWritten, 1U);
    EXPECT_EQ(report.counts.playlistsWritten, 2U);
    EXPECT_EQ(report.counts.playlistsRewritten, 3U);
    EXPECT_EQ(report.counts.playlistsRemoved, 4U);
    EXPECT_EQ(report.counts.filesRenamed, 5U);
    EXPECT_EQ(report.counts.filesRemoved, 6U);
    EXPECT_EQ(report.counts.filesCopied, 7U);
    EXPECT_EQ(report.counts.pagesWritten, 8U);
    EXPECT_EQ(report.counts.leftOut, 9U);
    EXPECT_EQ(report.counts.errors, 10U);
    EXPECT_EQ(report.gone[1].count, 1U);
    EXPECT_EQ(report.gone[2].count, 1U);
}

}  // namespace
}  // namespace quillon
