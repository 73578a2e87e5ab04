#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "app/journal/journal_reader.h"
#include "app/journal/net_changes.h"
#include "app/journal/row_names.h"
#include "app/journal/row_recorder.h"
#include "app/local_host.h"
#include "undo/announced_steps.h"
#include "undo/file_steps.h"
#include "undo/file_undo.h"
#include "undo/history.h"
#include "undo/net_rows.h"
#include "undo/row_undo.h"

namespace quillon {

/// Passes records on, once there is somewhere to pass them to.
class UndoSink : public ChangeSink {
  public:
    /// The sink must outlive this object; null: records are dropped.
    void PassTo(ChangeSink* sink) { sink_ = sink; }

    void Note(const ChangeRecord& record) override {
        if (sink_ != nullptr) sink_->Note(record);
    }
    void MakeDurable() override {
        if (sink_ != nullptr) sink_->MakeDurable();
    }

  private:
    ChangeSink* sink_ = nullptr;
};

/// Takes runs of a host folder back. The library's database is held from the beginning to the end,
/// so that no run comes in between.
class UndoWork {
  public:
    /// `stamp` is that of the first run to take back, "" for the last one that can be; of an undo
    /// that was started again any part's will do. CommandError
    /// where there is none, where journals cannot be read or the database cannot be had.
    UndoWork(LocalHost& local, std::string_view stamp);

    /// The stamp of the undo that has not done all, with which this one goes on; "" where it does
    /// not.
    const std::string& PartBefore() const { return partBefore_; }

    /// The runs, the newest first, without those that have changed nothing or have been taken back
    /// already; the last one's stamp.
    const std::vector<PastRun>& Runs() const { return runs_; }
    const std::string& Stamp() const { return stamp_; }

    /// Tags that interrupted runs may have damaged and that could not be put right now, in words.
    const std::vector<std::string>& Troubles() const { return troubles_; }

    struct Result {
        NetChanges changes;                ///< what changes
        std::vector<std::string> refused;  ///< what stays as it is, and why
        RowNames names;                    ///< of rows that change
    };

    /// What it would do. Changes nothing.
    Result Plan();

    struct Ended {
        std::vector<std::string> refused;  ///< as in `Result`
        std::uint64_t changes = 0;         ///< how many
        std::string stamp;                 ///< of the undo, which is a run itself
        std::string firstPart;             ///< the same, or of the undo that this one went on with
    };
    /// Does it, journalled. CommandError where it has to stop: started again it goes on.
    Ended CarryOut();

  private:
    void ReadJournals(const std::vector<std::filesystem::path>& journals, const History& history);
    void OpenDatabase();
    void LookAtRows();
    /// Takes files back by means of `carryOut`. `keeping` is the folder below Changes for content
    /// that has no room in the journal.
    using StepWork = std::function<void(const UndoMeans& means, const StepOptions& options)>;
    void PutFilesBack(Files& files, const std::string& keeping, const StepWork& carryOut,
                      std::vector<std::string>& refused);
    void PutRowsBack(const Attempt& attempt, std::vector<std::string>& refused);
    void HoldRowsBack();
    void TellRefusedRows(std::vector<std::string>& refused);
    void NoteDamaged(const JournalContent& content, const std::string& journal);
    bool GoesToRemoved(std::string_view path) const;

    LocalHost& local_;
    std::string stamp_, partBefore_;
    std::vector<PastRun> runs_;
    std::vector<FileStep> steps_;
    Writes writes_ = Writes::Whole;
    std::vector<NetRow> rows_;
    std::vector<DateReplaced> dates_;
    std::unordered_set<std::string> heldPaths_;  ///< of rows that were changed since
    std::vector<std::string> damaged_;           ///< lines of journals, in words
    std::vector<WriteLeft> writesLeft_;
    std::vector<std::string> troubles_;
    UndoSink sink_;
    RowRecorder recorder_{sink_};
    std::unique_ptr<Connection> connection_;
    std::optional<RowUndo> rowUndo_;  ///< where there are rows
    const FileStep* step_ = nullptr;  ///< the one being carried out
};

}  // namespace quillon
