#include "app/run_recording.h"

#include <utility>

#include "app/console.h"
#include "app/interrupted_writes.h"
#include "app/removed_music.h"
#include "app/version.h"
#include "picker/folders.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "playlists/playlist_snapshot.h"
#include "run/log.h"

namespace quillon {
namespace {

/// The host's log may be on the disk that is full; the error output is told, too.
void LogQuietly(Host& host, const std::string& message) {
    try {
        host.WriteLog(LogSource, message);
    } catch (const Failure&) {
        return;
    }
}

std::unique_ptr<JournalFile> StartJournal(LocalHost& local, JournalFile::Listener listener) {
    try {
        auto journal = std::make_unique<JournalFile>(ChangesFolder(local.host.Folder()),
                                                     local.clock, std::move(listener));
        journal->Note(RunStarted{
            .stamp = journal->Stamp(), .version = std::string(ProgramVersion), .mode = ""});
        return journal;
    } catch (const Failure& failure) {
        const std::string message =
            std::string("The journal of changes cannot be started: ") + failure.what() +
            ". Nothing was changed, since a run changes nothing that it cannot journal";
        LogQuietly(local.host, message);
        throw CommandError(message);
    }
}

std::string OutcomeWord(const RunSummary& summary) {
    if (summary.stopped) return "failed";
    switch (summary.outcome) {
        case RunOutcome::NothingRan:
            return "nothing ran";
        case RunOutcome::Aborted:
            return "aborted";
        case RunOutcome::Completed:
            break;
    }
    return "completed";
}

}  // namespace

// A run's snapshot of playlists is gone when the run has ended. Pages in the making that a killed
// run has left are of no use to anybody.
JournalledFiles::Keeping KeptBeside(const std::string& stamp, Run* const& run, LocalHost& local,
                                    RemovedFiles& removed, bool keepsRemoved) {
    return {
        .folder = local.host.GetAppPath() + R"(\Changes\)" + stamp,
        .shownFolder = "Changes/" + stamp,
        .placeOfDeleted =
            [&run, &local, &removed, keepsRemoved](std::string_view path) {
                return PlaceOfRemovedMusic(*run, local, removed, keepsRemoved, path);
            },
        .isScratch =
            [&run](std::string_view path) {
                return path.ends_with(DraftEnding) ||
                       EqualIgnoringCase(path, PlaylistSnapshotPath(run->settings.Nirvis_CDJ_DB));
            },
        .exactTimeOf = [&local](std::string_view path) { return local.files.ExactTimeOf(path); }};
}

RunRecording::RunRecording(LocalHost& local, JournalFile::Listener listener)
    : local_(local),
      removed_(RemovedMusicFolder(local.host), local.clock),
      // Asked for now: a failure after the run would look as if nothing had run.
      keepsRemoved_(ReadRemovedMusicSetting(local.host).keep),
      journal_(StartJournal(local, std::move(listener))),
      rows_(*journal_, [&local] { local.files.SyncNames(); }),
      files_(local.files, *journal_,
             KeptBeside(journal_->Stamp(), run_, local, removed_, keepsRemoved_)) {
    local.databases.SetObserver(&rows_);
    local.files.LetNamesWait();
}

void RunRecording::Accompany(Run& run) {
    run_ = &run;
    removed_.RemoveUnfinished();
    local_.databases.OnceHeld([this] {
        const auto note = [this](LogKind kind, const std::string& message) {
            if (kind == LogKind::Error) return LogError(*run_, LogSource, message);
            WriteLog(*run_, LogSource, message);
        };
        for (const WriteLeft& left : PutInterruptedWritesRight(local_, journal_->Stamp(), note))
            journal_->Remark(left);
    });
    if (keepsRemoved_) local_.files.OnDelete(KeepRemovedMusic(run, local_.host, removed_));
}

std::string RunRecording::StoppedText() const {
    return "The run was stopped, since a run changes nothing that it cannot journal: " +
           journal_->Trouble() + ". The next run goes on";
}

void RunRecording::LogThatItStopped() {
    LogQuietly(local_.host, StoppedText());
}

std::filesystem::path RunRecording::Path() const {
    return ChangesFolder(local_.host.Folder()) / (journal_->Stamp() + ".jsonl");
}

void RunRecording::End(const RunSummary& summary, std::chrono::milliseconds duration) {
    try {
        // What the journal says is done must not be lost in a power cut: nobody would look again.
        local_.files.SyncChanges();
    } catch (const Failure& failure) {
        // Without its end the next run looks.
        return LogQuietly(local_.host, failure.what());
    }
    journal_->Remark(RunEnded{.outcome = OutcomeWord(summary),
                              .status = ExitStatus(summary),
                              .braked = summary.braked,
                              .duration = duration});
    if (files_.HasKept())
        RemoveOlderContent(ChangesFolder(local_.host.Folder()), journal_->Stamp());
}

}  // namespace quillon
