#include "app/views/plain_view.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "app/signals.h"
#include "driver/phase_captions.h"

namespace quillon {
namespace {

/// A pipe whose reading end the test keeps.
class Pipe {
  public:
    Pipe() { EXPECT_EQ(pipe2(ends_.data(), O_CLOEXEC), 0); }
    ~Pipe() {
        CloseReader();
        CloseWriter();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int Writer() const { return ends_[1]; }
    void CloseReader() { Close(ends_[0]); }
    void CloseWriter() { Close(ends_[1]); }
    void MakeWriterNonBlocking() const { EXPECT_EQ(fcntl(ends_[1], F_SETFL, O_NONBLOCK), 0); }

    /// What lies in the pipe now.
    std::string Waiting() const {
        EXPECT_EQ(fcntl(ends_[0], F_SETFL, O_NONBLOCK), 0);
        std::string text;
        std::array<char, 65536> buffer{};
        for (;;) {
            const ssize_t count = read(ends_[0], buffer.data(), buffer.size());
            if (count <= 0) return text;
            text.append(buffer.data(), static_cast<std::size_t>(count));
        }
    }

  private:
    static void Close(int& end) {
        if (end >= 0) close(end);
        end = -1;
    }
    std::array<int, 2> ends_{-1, -1};
};

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

TEST(PlainView, SumsUpAtTheEnd) {
    const Pipe pipe;
    PlainView view(pipe.Writer());
    RunCounts counts;
    counts.albumsAdded = 2;
    counts.tracksAdded = 31;
    counts.tracksUnchanged = 4;
    counts.errors = 1;
    view.Summarize({RunOutcome::Completed, counts, std::chrono::seconds(62)});
    EXPECT_EQ(pipe.Waiting(),
              "Done in 0:01:02. Albums: 2 added, 0 changed, 0 removed, 0 unchanged. "
              "Tracks: 31 added, 0 changed, 0 removed, 4 unchanged. 1 error.\n");
}

TEST(PlainView, CountsPlaylistsWhereARunHadToDoWithThem) {
    const Pipe pipe;
    PlainView view(pipe.Writer());
    RunCounts counts;
    counts.playlistsWritten = 3;
    counts.playlistsRepaired = 2;
    counts.playlistsRemoved = 1;
    view.Summarize({RunOutcome::Completed, counts, std::chrono::seconds(62)});
    EXPECT_EQ(pipe.Waiting(),
              "Done in 0:01:02. Albums: 0 added, 0 changed, 0 removed, 0 unchanged. "
              "Tracks: 0 added, 0 changed, 0 removed, 0 unchanged. "
              "Playlists: 3 written, 2 repaired, 1 removed. 0 errors.\n");
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

TEST(PlainView, NeverWaitsForAReaderThatDoesNotKeepUp) {
    const Pipe pipe;
    pipe.MakeWriterNonBlocking();
    PlainView view(pipe.Writer());
    const std::string message(200, 'x');
    for (int i = 0; i < 20'000; ++i)
        view.LogWritten(LogKind::Information, "Quillon", message);
    const std::string line = "   Quillon: " + message + "\n";
    const std::string first = pipe.Waiting();
    EXPECT_GE(first.size(), std::size_t{4096});
    EXPECT_EQ(first.substr(0, line.size()), line);

    // What waited goes out with the next line, in whole lines and in order.
    std::string all = first;
    for (int i = 0; i < 100; ++i) {
        view.LogWritten(LogKind::Information, "Quillon", "later");
        all += pipe.Waiting();
    }
    EXPECT_TRUE(all.ends_with("   Quillon: later\n"));
    std::size_t position = 0;
    while (all.compare(position, line.size(), line) == 0)
        position += line.size();
    EXPECT_EQ(all.compare(position, 18, "   Quillon: later\n"), 0);
}

TEST(AbortSignals, PressAbortOnTheFirstSignal) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const AbortSignals signals;
        const PlainView view(-1);
        EXPECT_FALSE(view.AbortPressed());
        std::raise(signal);
        EXPECT_TRUE(view.AbortPressed());
        EXPECT_TRUE(view.AbortPressed()) << "it stays pressed";
    }
}

TEST(AbortSignalsDeathTest, TheSecondSignalEndsTheProcessAtOnce) {
    EXPECT_EXIT(
        {
            const AbortSignals signals;
            std::raise(SIGTERM);
            std::raise(SIGINT);
        },
        testing::ExitedWithCode(3), "");
}

TEST(AbortSignalsDeathTest, TheSecondSignalDoesTheLastActFirst) {
    EXPECT_EXIT(
        {
            const AbortSignals signals;
            AbortSignals::SetLastAct([]() noexcept {
                [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, "given back", 10);
            });
            std::raise(SIGTERM);
            std::raise(SIGTERM);
        },
        testing::ExitedWithCode(3), "given back");
}

TEST(AbortSignals, GiveTheSignalsBack) {
    {
        const AbortSignals signals;
    }
    struct sigaction action{};
    EXPECT_EQ(sigaction(SIGTERM, nullptr, &action), 0);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
    EXPECT_EQ(sigaction(SIGPIPE, nullptr, &action), 0);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
}

TEST(AbortSignals, LeaveASignalThatIsIgnored) {
    std::signal(SIGINT, SIG_IGN);
    {
        const AbortSignals signals;
        std::raise(SIGINT);
        EXPECT_FALSE(AbortSignals::AbortRequested());
    }
    std::signal(SIGINT, SIG_DFL);
}

TEST(RunSummary, GivesTheExitStatus) {
    const RunCounts clean;
    RunCounts failed;
    failed.errors = 1;
    EXPECT_EQ(ExitStatus({RunOutcome::Completed, clean, {}}), 0);
    EXPECT_EQ(ExitStatus({RunOutcome::Completed, failed, {}}), 1);
    EXPECT_EQ(ExitStatus({RunOutcome::NothingRan, clean, {}}), 2);
    EXPECT_EQ(ExitStatus({RunOutcome::NothingRan, failed, {}}), 2);
    EXPECT_EQ(ExitStatus({RunOutcome::Aborted, clean, {}}), 3);
    EXPECT_EQ(ExitStatus({RunOutcome::Aborted, failed, {}}), 3);
}

TEST(RunSummary, SaysHowARunEnded) {
    EXPECT_TRUE(SummaryText({RunOutcome::Aborted, {}, std::chrono::seconds(5)})
                    .starts_with("Aborted after 0:00:05. "));
    EXPECT_EQ(SummaryText({RunOutcome::NothingRan, {}, {}}), "Nothing ran; 0 errors.");
}

TEST(SummaryText, TellsOfTagsOnlyWhereSomethingWasDoneWithThem) {
    RunSummary summary;
    summary.outcome = RunOutcome::Completed;
    EXPECT_EQ(SummaryText(summary).find("Tags"), std::string::npos);
    summary.counts.tagsWritten = 3;
    EXPECT_NE(SummaryText(summary).find("unchanged. Tags: 3 written. 0 errors."),
              std::string::npos);
    summary.counts = {};
    summary.counts.tagValuesStored = 1;
    EXPECT_NE(SummaryText(summary).find("Tags: 1 value taken into the database."),
              std::string::npos);
}

}  // namespace
}  // namespace quillon
