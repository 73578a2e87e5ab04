#include "app/views/plain_view.h"

#include <gtest/gtest.h>
#include <string>

#include "app/signals.h"
#include "driver/phase_captions.h"
#include "tests/app/pipe.h"

namespace quillon {
namespace {

FormState State() {
    FormState state;
    for (std::size_t i = 0; i < PhaseCount; ++i)
        state.aPhase[i].caption = PhaseCaptions[i];
    state.lblver = "Version 1.2.3";
    return state;
}

TEST(PlainView, WritesEachPhaseOnceWhenItStarts) {
    const Pipe pipe;
    PlainView view(pipe.Writer());
    FormState state = State();
    view.Show(state);
    EXPECT_EQ(pipe.Waiting(), "Library Consistency Management, Version 1.2.3\n");

    view.ProcessEvents(state);
    EXPECT_EQ(pipe.Waiting(), "");
    state.aPhase[0].selected = true;
    view.ProcessEvents(state);
    view.ProcessEvents(state);
    EXPECT_EQ(pipe.Waiting(), "1. Capture Playlists\n");
    state.aPhase[0].selected = false;
    state.aPhase[7].selected = true;
    view.ProcessEvents(state);
    EXPECT_EQ(pipe.Waiting(), "8. Updatae Playlist References\n");
}

TEST(PlainView, WritesEachLogRecordAtOnceAndOnOneLine) {
    const Pipe pipe;
    PlainView view(pipe.Writer());
    view.LogWritten(LogKind::Information, "Quillon",
                    "ProcessTracks Line 0 Path not found: D:\\a\nb");
    EXPECT_EQ(pipe.Waiting(), "   Quillon: ProcessTracks Line 0 Path not found: D:\\a b\n");
}

TEST(PlainView, SumsUpOnOneLine) {
    const Pipe pipe;
    PlainView view(pipe.Writer());
    RunCounts counts;
    counts.albumsAdded = 2;
    counts.tracksAdded = 31;
    counts.playlistsRewritten = 1;
    view.Summarize({RunOutcome::Completed, counts, std::chrono::seconds(62)});
    EXPECT_EQ(pipe.Waiting(),
              "Done in 0:01:02; no errors. Albums: 2 added. Tracks: 31 added. "
              "Playlists: 1 rewritten.\n");
}

TEST(PlainView, TellsErrorsAndTheSummaryAloneWhereItIsToBeQuiet) {
    const Pipe pipe;
    PlainView view(pipe.Writer(), PlainDetail::ErrorsAndSummary);
    FormState state = State();
    view.Show(state);
    state.aPhase[3].selected = true;
    view.ProcessEvents(state);
    view.LogWritten(LogKind::Information, "Quillon", "Playlist x.pla, Track # updated");
    EXPECT_EQ(pipe.Waiting(), "");
    view.LogWritten(LogKind::Error, "Quillon", "ProcessTracks Line 0 Path not found");
    EXPECT_EQ(pipe.Waiting(), "   Quillon: ProcessTracks Line 0 Path not found\n");
    RunCounts counts;
    counts.errors = 1;
    view.Summarize({RunOutcome::Completed, counts, std::chrono::seconds(1)});
    EXPECT_EQ(pipe.Waiting(),
              "Done in 0:00:01; 1 error in host.log. No album, track, file, playlist or tag was "
              "changed.\n");
}

TEST(PlainView, NamesWhatWentAwayHoweverQuietItIs) {
    for (const PlainDetail detail : {PlainDetail::Everything, PlainDetail::ErrorsAndSummary}) {
        const Pipe pipe;
        PlainView view(pipe.Writer(), detail);
        RunSummary summary{RunOutcome::Completed, {}, std::chrono::seconds(1)};
        summary.counts.tracksRemoved = 2;
        summary.gone[0] = {.count = 2, .names = {"D:\\Music\\a.mp3", "D:\\Music\\b.mp3"}};
        view.Summarize(summary);
        EXPECT_EQ(pipe.Waiting(),
                  "2 tracks removed:\n"
                  "   D:\\Music\\a.mp3\n"
                  "   D:\\Music\\b.mp3\n"
                  "Done in 0:00:01; no errors. Tracks: 2 removed.\n");
    }
}

TEST(PlainView, OutlivesAReaderThatGoesAway) {
    Pipe pipe;
    const AbortSignals signals;
    PlainView view(pipe.Writer());
    pipe.CloseReader();
    for (int i = 0; i < 1000; ++i)
        view.LogWritten(LogKind::Information, "Quillon", "nobody reads this");
    view.Summarize({});
    EXPECT_FALSE(view.AbortPressed());
}

}  // namespace
}  // namespace quillon
