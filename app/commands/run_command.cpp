#include "app/commands/run_command.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <unistd.h>

#include "app/console.h"
#include "app/journal/journal_file.h"
#include "app/journal/journal_reader.h"
#include "app/journal/old_runs.h"
#include "app/local_host.h"
#include "app/outside_host.h"
#include "app/report/report_file.h"
#include "app/report/report_gatherer.h"
#include "app/report/report_names.h"
#include "app/run_recording.h"
#include "app/signals.h"
#include "app/version.h"
#include "app/views/journalled_view.h"
#include "app/views/line_output.h"
#include "app/views/make_view.h"
#include "app/views/run_summary.h"
#include "driver/library_form.h"
#include "driver/modes.h"
#include "run/log.h"
#include "run/run.h"
#include "taglib/tag_library.h"

namespace quillon {
namespace {

std::string ModeOf(const Run& run) {
    const Mode* const mode = SelectMode(run.settings);
    return mode == nullptr ? "" : std::string(mode->what);
}

bool IsMode(const Mode* mode, bool Settings::* setting) {
    return mode != nullptr && mode->setting == setting;
}

/// What the journal counts as it has it, so that summary, report and journal agree. Only the run
/// knows what it looked at and left as it was.
RunCounts CountsOf(const RunCounts& run, const Mode* mode, ReportGatherer& journal) {
    RunCounts counts = run;
    const auto take = [&journal](std::size_t& count, DeedKind kind) {
        count = journal.CountOf(kind);
    };
    take(counts.albumsAdded, DeedKind::AlbumAdded);
    take(counts.albumsChanged, DeedKind::AlbumChanged);
    take(counts.albumsRemoved, DeedKind::AlbumRemoved);
    take(counts.tracksAdded, DeedKind::TrackAdded);
    take(counts.tracksChanged, DeedKind::TrackChanged);
    take(counts.tracksRemoved, DeedKind::TrackRemoved);
    take(counts.filesRenamed, DeedKind::FileRenamed);
    take(counts.filesRemoved, DeedKind::FileRemoved);
    take(counts.filesCopied, DeedKind::FileCopied);
    take(counts.tagsWritten, DeedKind::TagWritten);
    take(counts.playlistsWritten, DeedKind::PlaylistWritten);
    take(counts.playlistsRewritten, DeedKind::PlaylistRewritten);
    take(counts.playlistsRemoved, DeedKind::PlaylistDeleted);
    take(counts.pagesWritten, DeedKind::PageWritten);
    counts.imagesAdded = journal.Covers().added;
    counts.imagesChanged = journal.Covers().changed;
    counts.imagesRemoved = journal.Covers().removed;
    counts.songsAdded = journal.Stored().songsAdded;
    counts.artistsAdded = journal.Stored().artistsAdded;
    // Other modes change paths and values for other reasons, which they tell of.
    counts.rowsRepointed = IsMode(mode, &Settings::MakeRemote) ? journal.Stored().pathsChanged : 0;
    counts.tagValuesStored =
        IsMode(mode, &Settings::ID3Update) ? journal.Stored().valuesChanged : 0;
    const auto unchanged = [](std::size_t seen, std::size_t changed) {
        return seen - std::min(seen, changed);
    };
    counts.albumsUnchanged =
        unchanged(run.albumsUnchanged + run.albumsChanged, counts.albumsChanged);
    counts.tracksUnchanged =
        unchanged(run.tracksUnchanged + run.tracksChanged, counts.tracksChanged);
    return counts;
}

RunSummary SummaryOf(RunOutcome outcome, const Run& run, ReportGatherer& journal,
                     const RunRecording& recording, std::chrono::milliseconds elapsed) {
    const RunReport report = run.Report();
    return {outcome,
            CountsOf(report.counts, SelectMode(run.settings), journal),
            elapsed,
            report.gone,
            report.saved,
            report.braked,
            recording.KeepsRemoved(),
            recording.HasStopped()};
}

void TellErrors(const Run& run, const RunRecording& recording) {
    LineOutput errors(STDERR_FILENO);
    if (recording.HasStopped()) errors.WriteLine("quillon: " + recording.StoppedText());
    for (const std::string& line : LostRecordsLines(run.lostRecords, run.counts))
        errors.WriteLine(line);
    errors.Finish();
}

/// "" where the settings name none that can be found.
std::filesystem::path DatabaseOf(const Run& run, LocalHost& local) {
    try {
        return local.resolver.Local(run.settings.Nirvis_CDJ_DB);
    } catch (const Failure&) {
        return "";
    }
}

/// What a report tells is gathered as the journal is told of it. Where the journal took something
/// no more, the report is of what it has.
ReportContent ContentOf(ReportGatherer& gatherer, const ReportFacts& facts,
                        const RunRecording& recording) {
    if (!recording.HasStopped()) return gatherer.Finish();
    ReportGatherer recorded(facts);
    VisitRecords(recording.Path(), [&](const ChangeRecord& record) { recorded.Note(record); });
    return recorded.Finish();
}

void Report(const Run& run, LocalHost& local, const RunRecording& recording,
            ReportGatherer& gatherer, ReportFacts& facts) {
    ReportNames names(DatabaseOf(run, local));
    facts.host = local.host.Folder().string();
    facts.nameOf = [&names](const std::string& table, std::int64_t id) {
        return names.Of(table, id);
    };
    facts.leftOut = LeftOutForReport(run.leftOut);
    WriteReport(
        local.host, local.host.Folder(), [&] { return ContentOf(gatherer, facts, recording); },
        facts);
}

}  // namespace

int RunLibrary(const RunRequest& request) {
    Run* current = nullptr;
    const auto note = [&current](LogKind kind, const std::string& message) {
        if (current == nullptr) return;
        if (kind == LogKind::Error) return LogError(*current, LogSource, message);
        WriteLog(*current, LogSource, message);
    };
    const std::unique_ptr<Host> outside = request.host.empty() ? TheOutsideHost() : nullptr;
    LocalHost local = outside ? LocalHost(*outside, note) : LocalHost(request.host, note);
    // Before the view, which would otherwise leave signals to the terminal library.
    const AbortSignals signals;
    ReportFacts facts;
    ReportGatherer gatherer(facts);
    RunRecording recording(local, [&](const ChangeRecord& record) {
        if (current != nullptr) facts.flatLayout = current->settings.FlatStructure;
        gatherer.Note(record);
    });
    const std::unique_ptr<View> view = MakeView(request.view, request.quiet);
    JournalledView shown(*view, recording.Journal(), [&current] { return ModeOf(*current); });
    Host& host = outside ? *outside : static_cast<Host&>(local.host);
    Run run(host, recording.RunFiles(), local.clock, shown);
    current = &run;
    TagLibrary tags;
    run.tagFormats = &tags;
    run.thumbnails = local.thumbnails.get();
    run.removals.allAllowed = request.allowRemovals;
    recording.Accompany(run);
    local.files.ClearUnfinished();
    RemoveUnfinishedReports(local.host.Folder());

    LibraryForm form(run, local.databases, ProgramVersion);
    const RunOutcome outcome = form.Form_Load();
    // Closing the database may still save rows.
    run.ForgetTables();
    run.connection.reset();
    if (recording.HasStopped()) recording.LogThatItStopped();
    const RunSummary summary = SummaryOf(outcome, run, gatherer, recording, shown.Elapsed());
    shown.Summarize(summary);
    recording.End(summary, shown.Elapsed());
    Report(run, local, recording, gatherer, facts);
    if (ExitStatus(summary) == DoneStatus) {
        RemoveOldRuns(ChangesFolder(local.host.Folder()), ".jsonl", local.clock.Now());
        RemoveOldRuns(ReportsFolder(local.host.Folder()), ".html", local.clock.Now());
    }
    TellErrors(run, recording);
    return ExitStatus(summary);
}

}  // namespace quillon
