#include "app/views/run_summary.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "app/text/display_text.h"

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
                      .playlistsRewritten = 12,
                      .playlistsRemoved = 13,
                      .filesRenamed = 15,
                      .filesRemoved = 16,
                      .filesCopied = 17,
                      .rowsRepointed = 18,
                      .imagesAdded = 19,
                      .imagesChanged = 20,
                      .imagesRemoved = 21,
                      .songsAdded = 22,
                      .artistsAdded = 23,
                      .pagesWritten = 24,
                      .leftOut = 25,
                      .errors = 14};
    EXPECT_EQ(SummaryText(summary),
              "Done in 0.01 s; 14 errors in host.log. "
              "Albums: 1 added, 2 changed, 3 removed, 4 unchanged. "
              "Tracks: 5 added, 6 changed, 7 removed, 8 unchanged. "
              "Files: 15 renamed, 16 moved to Removed, 17 copied. Stored paths: 18 changed. "
              "Playlists: 11 written, 12 rewritten, 13 removed. "
              "Tags: 9 written, 10 values taken into the database. "
              "Covers: 19 added, 20 changed, 21 removed. "
              "Download table: 22 songs added, 23 artists added. Pages: 24 written. "
              "25 music files left out, see 'quillon check'.");
}

TEST(SummaryLines, SayInWordsWhatDidNotHappen) {
    const auto lines = SummaryLines({RunOutcome::Completed, {}, seconds(3)});
    EXPECT_EQ(lines[0], "Done in 0:00:03; no errors.");
    EXPECT_EQ(lines[1], "No album or track was changed.");
    EXPECT_EQ(lines[2], "No file, playlist or tag was changed.");
}

TEST(SummaryLines, SayWhatToDoWhereNothingRan) {
    RunSummary summary;
    summary.counts.errors = 1;
    const auto lines = SummaryLines(summary);
    EXPECT_EQ(lines[0], "Nothing ran; 1 error in host.log.");
    EXPECT_EQ(lines[1], "No album, track, file, playlist or tag was changed.");
    EXPECT_EQ(lines[2], "'quillon check' says what is in the way.");
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

TEST(SummaryLines, TellAStopForWantOfAJournalFromAnAbort) {
    RunSummary summary{RunOutcome::Aborted, {}, seconds(3)};
    summary.counts.errors = 1;
    EXPECT_EQ(SummaryLines(summary)[0], "Aborted after 0:00:03; 1 error in host.log.");
    EXPECT_EQ(ExitStatus(summary), 3);
    summary.stopped = true;
    EXPECT_EQ(SummaryLines(summary)[0], "Stopped after 0:00:03; 1 error in host.log.");
    EXPECT_EQ(ExitStatus(summary), 1);
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
              "Done in 0:00:01; no errors. No album, track, file, playlist or tag was changed.");
}

TEST(SummaryText, CountsFilesWhereNothingElseChanged) {
    RunSummary summary{RunOutcome::Aborted, {}, seconds(1)};
    summary.counts.filesRemoved = 12'675;
    EXPECT_EQ(SummaryText(summary),
              "Aborted after 0:00:01; no errors. Files: 12675 moved to Removed.");
    summary.keepsRemoved = false;
    EXPECT_EQ(SummaryText(summary),
              "Aborted after 0:00:01; no errors. Files: 12675 deleted for good.");
}

TEST(SummaryText, NamesOneThingInTheSingular) {
    RunSummary summary{RunOutcome::Completed, {}, seconds(1)};
    summary.counts.songsAdded = 1;
    summary.counts.artistsAdded = 1;
    summary.counts.leftOut = 1;
    EXPECT_EQ(SummaryText(summary),
              "Done in 0:00:01; no errors. Download table: 1 song added, 1 artist added. "
              "1 music file left out, see 'quillon check'.");
}

TEST(SummaryText, TellsThatTheBrakeHeld) {
    RunSummary summary{RunOutcome::Completed, {}, seconds(1)};
    summary.counts.errors = 1;
    summary.counts.tracksUnchanged = 7;
    summary.braked = true;
    EXPECT_EQ(SummaryText(summary),
              "Done in 0:00:01; 1 error in host.log. Tracks: 7 unchanged. The brake held, host.log "
              "tells what would have gone.");
}

TEST(SummaryText, DoesNotSayThatNothingChangedWhereThatIsNotCertain) {
    RunSummary summary{RunOutcome::Completed, {}, seconds(1)};
    summary.counts.errors = 1;
    summary.saved = false;
    EXPECT_EQ(SummaryText(summary),
              "Done in 0:00:01; 1 error in host.log. Not everything could be saved in the "
              "database; what is not certain is not counted.");
}

TEST(SummaryText, DoesNotSendToALogThatCouldNotBeWritten) {
    RunSummary summary{RunOutcome::Completed, {}, seconds(1)};
    summary.counts.errors = 2;
    summary.counts.recordsLost = 3;
    EXPECT_TRUE(SummaryText(summary).starts_with(
        "Done in 0:00:01; 2 errors on the error output, host.log lacks 3 records. "));
    summary.counts.errors = 0;
    EXPECT_TRUE(
        SummaryText(summary).starts_with("Done in 0:00:01; no errors, host.log lacks 3 records. "));
    EXPECT_EQ(SummaryLines(summary, "Disk full: host.log", 100)[0],
              "Done in 0:00:01; no errors, host.log lacks 3 records, last: Disk full: host.log");
}

TEST(LossLines, NameUpToTenOfEachKindAndThenCount) {
    RunSummary summary;
    EXPECT_TRUE(LossLines(summary).empty());
    summary.gone[0] = {.count = 12, .names = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}};
    summary.gone[1] = {.count = 1, .names = {"D:\\x\ny.mp3"}};
    EXPECT_EQ(LossLines(summary), (std::vector<std::string>{
                                      "12 tracks removed:", "   a", "   b", "   c", "   d", "   e",
                                      "   f", "   g", "   h", "   i", "   j", "   and 2 more",
                                      "1 music file removed:", "   D:\\x y.mp3"}));
}

TEST(LossLines, TakeNoMoreRoomThanThereIs) {
    RunSummary summary;
    summary.gone[0] = {.count = 4, .names = {"abcdefghijklmnop", "b", "c", "d"}};
    summary.gone[2] = {.count = 2, .names = {"x", "y"}};
    EXPECT_EQ(LossLines(summary, 80, 8).size(), 8U) << "all six names";
    EXPECT_EQ(LossLines(summary, 80, 7),
              (std::vector<std::string>{"4 tracks removed:", "   abcdefghijklmnop", "   b",
                                        "   and 2 more", "2 playlists removed:", "   x", "   y"}));
    for (const std::string& line : LossLines(summary, 10, 6))
        EXPECT_LE(DisplayColumns(line), 10U) << line;
    EXPECT_EQ(LossLines(summary, 10, 6)[1], "   ab…mnop");
    EXPECT_TRUE(LossLines(summary, 80, 5).empty());
}

TEST(SummaryText, SaysHowARunEnded) {
    EXPECT_TRUE(
        SummaryText({RunOutcome::Aborted, {}, seconds(5)}).starts_with("Aborted after 0:00:05; "));
    EXPECT_EQ(SummaryText({RunOutcome::NothingRan, {}, {}}),
              "Nothing ran; no errors. 'quillon check' says what is in the way.");
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
              "Done in 0.01 s; no errors.")
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

TEST(SummaryLinesOfAWidth, TakeAsManyLinesAsAllElseNeeds) {
    RunSummary summary = Reconciled();
    summary.counts.filesRenamed = 3;
    summary.counts.songsAdded = 12;
    summary.counts.leftOut = 12;
    EXPECT_EQ(SummaryLines(summary, "", 60),
              (std::vector<std::string>{"Done in 0:01:02; no errors.",
                                        "Albums: 2 added, 1 changed. Tracks: 12 added, 4 removed.",
                                        "Files: 3 renamed. Playlists: 3 written, 1 removed.",
                                        "Download table: 12 songs added.",
                                        "12 music files left out, see 'quillon check'."}));
}

TEST(SummaryLinesOfAWidth, Fit) {
    RunSummary summary = Reconciled();
    summary.counts.errors = 3;
    summary.counts.filesCopied = 100;
    summary.counts.leftOut = 100;
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
