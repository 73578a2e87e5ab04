#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "app/journal/journal_file.h"
#include "app/journal/row_recorder.h"
#include "app/local_host.h"
#include "app/views/run_summary.h"
#include "changes/journalled_files.h"
#include "platform/portable/removed_files.h"
#include "run/run.h"

namespace quillon {

/// What JournalledFiles need to know of a run with this stamp: what is kept beside its journal, and
/// what is its scratch. `run` may be set later, but before the first file changes; all must outlive
/// the answer.
JournalledFiles::Keeping KeptBeside(const std::string& stamp, Run* const& run, LocalHost& local,
                                    RemovedFiles& removed, bool keepsRemoved);

/// The journal of a run, and the doors through which the run changes rows and files, which tell it.
class RunRecording {
  public:
    /// Starts the journal; databases of `local`, which must outlive this object, tell it of their
    /// rows from now on. CommandError where there can be no journal: then nothing may be changed.
    /// `listener` is told of each record.
    RunRecording(LocalHost& local, JournalFile::Listener listener);
    RunRecording(const RunRecording&) = delete;
    RunRecording& operator=(const RunRecording&) = delete;
    ~RunRecording() {
        local_.databases.SetObserver(nullptr);
        local_.databases.OnceHeld({});
        local_.files.SyncNames();
    }

    JournalFile& Journal() { return *journal_; }
    /// For the run, which changes files through these alone.
    Files& RunFiles() { return files_; }
    /// Whether music that is removed is kept.
    bool KeepsRemoved() const { return keepsRemoved_; }

    /// To be called before the run starts.
    void Accompany(Run& run);

    /// Whether the journal took something no more; then the run was stopped.
    bool HasStopped() const { return !journal_->Trouble().empty(); }
    /// What a person is to know then.
    std::string StoppedText() const;
    void LogThatItStopped();

    /// The journal's file.
    std::filesystem::path Path() const;

    /// Closes the journal. `summary` is what it was told of the run's end.
    void End(const RunSummary& summary, std::chrono::milliseconds duration);

  private:
    LocalHost& local_;
    RemovedFiles removed_;
    bool keepsRemoved_;
    std::unique_ptr<JournalFile> journal_;
    RowRecorder rows_;
    JournalledFiles files_;
    Run* run_ = nullptr;
};

}  // namespace quillon
