#include "app/views/run_summary.h"

#include <gtest/gtest.h>

#include "app/display_text.h"

namespace quillon {
namespace {

using std::chrono::seconds;

RunSummary Reconciled() {
    RunSummary summary{RunOutcome::Completed, {}, seconds(62)};
    RunCounts& counts = summary.counts;
    counts.albumsAdded = 2;
    counts.albumsChanged = 1;
    counts.albumsUnchanged = 398;
    counts.tracksAdded = 12;
    counts.tracksRemoved = 4;
    counts.tracksUnchanged = 4310;
    counts.playlistsWritten = 3;
    counts.playlistsRemoved = 1;
    return summary;
}

TEST(SummaryLines, TellOutcomeThenMusicThenPlaylistsAndTags) {
    RunSummary summary = Reconciled();
    summary.counts.errors = 2;
    summary.counts.tagsWritten = 5;
    const auto lines = SummaryLines(summary);
    EXPECT_EQ(lines[0], "Done in 0:01:02; 2 errors in host.log.");
    EXPECT_EQ(lines[1],
              "Albums: 2 added, 1 changed, 398 unchanged. "
              "Tracks: 12 added, 4 removed, 4310 unchanged.");
    EXPECT_EQ(lines[2], "Playlists: 3 written, 1 removed. Tags: 5 written.");
}

TEST(SummaryLines, KnowEveryCount) {
    RunSummary summary;
    summary.outcome = RunOutcome::Completed;
    summary.counts = {.albumsAdded = 1,
                      .albumsChanged = 2,
                      .albumsRemoved = 3,
                      .albumsUnchanged = 4,
                      .tracksAdded = 5,
                      .tracksChanged = 6,
                      .tracksRemoved = 7,
                      .tracksUnchanged = 8,
                      .tagsWritten = 9,
                      .tagValuesStored = 10,
                      .playlistsWritten = 11,
                      .playlistsRepaired = 12,
                      .playlistsRemoved = 13,
                      .errors = 14};
    EXPECT_EQ(SummaryText(summary),
              "Done in 0:00:00; 14 errors in host.log. "
              "Albums: 1 added, 2 changed, 3 removed, 4 unchanged. "
              "Tracks: 5 added, 6 changed, 7 removed, 8 unchanged. "
              "Playlists: 11 written, 12 repaired, 13 removed. "
              "Tags: 9 written, 10 values taken into the database.");
}

TEST(SummaryLines, SayInWordsWhatDidNotHappen) {
    const auto lines = SummaryLines({RunOutcome::Completed, {}, seconds(3)});
    EXPECT_EQ(lines[0], "Done in 0:00:03; no errors.");
    EXPECT_EQ(lines[1], "No album or track was changed.");
    EXPECT_EQ(lines[2], "No playlist or tag was changed.");
}

TEST(SummaryLines, SayWhatToDoWhereNothingRan) {
    RunSummary summary;
    summary.counts.errors = 1;
    const auto lines = SummaryLines(summary);
    EXPECT_EQ(lines[0], "Nothing ran; 1 error in host.log.");
    EXPECT_EQ(lines[1], "No album, track, playlist or tag was changed.");
    EXPECT_EQ(lines[2], "'quillon check' tells what stands in the way.");
}

TEST(SummaryLines, SayWhereErrorsAreToldThatTheLogDidNotTake) {
    RunSummary summary{RunOutcome::Completed, {}, seconds(3)};
    summary.counts.recordsLost = 5;
    EXPECT_EQ(SummaryLines(summary)[0], "Done in 0:00:03; no errors, host.log lacks 5 records.");
    summary.counts.errors = 1;
    summary.counts.recordsLost = 1;
    EXPECT_EQ(SummaryLines(summary)[0],
              "Done in 0:00:03; 1 error on the error output, host.log lacks 1 record.");
}

TEST(LostRecordsLines, NameTheReasonAndTheFirstErrors) {
    RunCounts counts;
    EXPECT_TRUE(LostRecordsLines({}, counts).empty());
    counts.recordsLost = 4;
    counts.errors = 2;
    EXPECT_EQ(
        LostRecordsLines({"Disk full: /x/host.log", {"Quillon: a", "Quillon: b"}}, counts),
        (std::vector<std::string>{"quillon: host.log lacks 4 records: Disk full: /x/host.log.",
                                  "   Quillon: a", "   Quillon: b"}));
    counts.errors = 30;
    EXPECT_EQ(LostRecordsLines({"Disk full", {"Quillon: a"}}, counts).back(),
              "   and more, 30 errors in all");
}

TEST(SummaryLines, OfOneValueSpeakInTheSingular) {
    RunSummary summary{RunOutcome::Completed, {}, {}};
    summary.counts.tagValuesStored = 1;
    EXPECT_EQ(SummaryLines(summary)[2], "Tags: 1 value taken into the database.");
}

TEST(SummaryText, LeavesOutWhatTheModeHadNothingToDoWith) {
    RunSummary summary{RunOutcome::Completed, {}, seconds(1)};
    summary.counts.playlistsWritten = 7;
    EXPECT_EQ(SummaryText(summary), "Done in 0:00:01; no errors. Playlists: 7 written.");
    summary.counts = {};
    EXPECT_EQ(SummaryText(summary),
              "Done in 0:00:01; no errors. No album, track, playlist or tag was changed.");
}

TEST(SummaryText, SaysHowARunEnded) {
    EXPECT_TRUE(
        SummaryText({RunOutcome::Aborted, {}, seconds(5)}).starts_with("Aborted after 0:00:05; "));
    EXPECT_EQ(SummaryText({RunOutcome::NothingRan, {}, {}}),
              "Nothing ran; no errors. 'quillon check' tells what stands in the way.");
}

TEST(SummaryLinesOfAWidth, TellTheLatestRecordAsFarAsThereIsRoom) {
    RunSummary summary = Reconciled();
    summary.counts.errors = 2;
    const std::string record = "ProcessTracks Line 3 Path not found: D:\\Music\\Alder\\Dawn.mp3";
    EXPECT_EQ(SummaryLines(summary, record, 200)[0],
              "Done in 0:01:02; 2 errors in host.log, last: " + record);
    EXPECT_EQ(SummaryLines(summary, record, 80)[0],
              "Done in 0:01:02; 2 errors in host.log, last: ProcessTracks Lin…ic\\Alder\\Dawn.mp3");
    EXPECT_EQ(SummaryLines(summary, record, 50)[0], "Done in 0:01:02; 2 errors in host.log.");
}

TEST(SummaryLinesOfAWidth, SayWhyNothingRan) {
    EXPECT_EQ(SummaryLines({RunOutcome::NothingRan, {}, {}}, "Quillon must be enabled", 80)[0],
              "Nothing ran: Quillon must be enabled");
    EXPECT_EQ(SummaryLines({RunOutcome::Completed, {}, {}}, "Playlist repaired", 80)[0],
              "Done in 0:00:00; no errors.")
        << "a run that did its work has no need of its last message";
}

TEST(SummaryLinesOfAWidth, LeaveOutWhatIsUnchangedFirst) {
    EXPECT_EQ(SummaryLines(Reconciled(), "", 87)[1], SummaryLines(Reconciled())[1]);
    EXPECT_EQ(SummaryLines(Reconciled(), "", 80)[1],
              "Albums: 2 added, 1 changed. Tracks: 12 added, 4 removed.");
    RunSummary unchanged{RunOutcome::Completed, {}, {}};
    unchanged.counts.albumsUnchanged = 40'000;
    unchanged.counts.tracksUnchanged = 400'000;
    EXPECT_EQ(SummaryLines(unchanged, "", 40)[1], "No album or track was changed.");
}

TEST(SummaryLinesOfAWidth, WhereErrorsAreToldIsWorthMoreThanTheDuration) {
    RunSummary summary{RunOutcome::Aborted, {}, seconds(7)};
    summary.counts.errors = 12;
    EXPECT_EQ(SummaryLines(summary, "x", 40)[0], "Aborted; 12 errors in host.log.");
}

TEST(SummaryLinesOfAWidth, Fit) {
    RunSummary summary = Reconciled();
    summary.counts.errors = 3;
    for (const RunOutcome outcome :
         {RunOutcome::Completed, RunOutcome::Aborted, RunOutcome::NothingRan}) {
        summary.outcome = outcome;
        for (std::size_t columns = 0; columns < 100; ++columns) {
            for (const std::string& line :
                 SummaryLines(summary, "Sängerin\n音楽 und mehr", columns))
                EXPECT_LE(DisplayColumns(line), columns) << line;
        }
    }
}

TEST(ExitStatus, TellsOutcomeAndErrors) {
    const RunCounts clean;
    RunCounts failed;
    failed.errors = 1;
    EXPECT_EQ(ExitStatus({RunOutcome::Completed, clean, {}}), 0);
    EXPECT_EQ(ExitStatus({RunOutcome::Completed, failed, {}}), 1);
    RunCounts untold;
    untold.recordsLost = 1;
    EXPECT_EQ(ExitStatus({RunOutcome::Completed, untold, {}}), 1);
    EXPECT_EQ(ExitStatus({RunOutcome::NothingRan, clean, {}}), 2);
    EXPECT_EQ(ExitStatus({RunOutcome::NothingRan, failed, {}}), 2);
    EXPECT_EQ(ExitStatus({RunOutcome::Aborted, clean, {}}), 3);
    EXPECT_EQ(ExitStatus({RunOutcome::Aborted, failed, {}}), 3);
}

}  // namespace
}  // namespace quillon
