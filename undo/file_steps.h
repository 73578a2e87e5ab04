#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "changes/change.h"
#include "undo/file_undo.h"
#include "undo/folders_that_stay.h"
#include "undo/history.h"
#include "undo/outcome.h"

namespace quillon {

/// A change of a file that is to be taken back.
struct FileStep {
    std::string name;  ///< `ChangeName`
    FileChange change;
    /// Whether another step is about one of its names: then a look at the disk does not tell how
    /// far an undo has come with them, and it has to be known from its journal.
    bool isLinked = false;
    Outcome outcome = {};
};

/// The steps that take these runs, the newest first, back: in their order, without the changes that
/// did not come off, what is known to have been taken back, and dated copies, which stay.
std::vector<FileStep> FileStepsFor(std::span<const RecordedRun> runs, const TakenChanges& taken);

/// The names of which the change decides what they mean, in small letters.
std::vector<std::string> NamesOf(const FileChange& change);

struct StepOptions {
    /// Told of a step before it.
    std::function<void(const FileStep& step)> beginning = {};
    /// Whether a row that stays as it is names this path, which is in small letters: what lies
    /// there stays, too.
    std::function<bool(const std::string& path)> isHeld = {};
};

/// Takes steps back one by one, in their order; their outcomes tell of each.
class StepTaker {
  public:
    /// What is given must outlive this object.
    StepTaker(const Attempt& attempt, const StepOptions& options)
        : attempt_(attempt), options_(options) {}

    /// Whether nothing that stays holds the next step back. Else its outcome says what.
    bool MayTakeBack(FileStep& step);
    /// Tries it by means of `undo`.
    void TakeBack(FileStep& step, FileUndo& undo);

  private:
    const Attempt& attempt_;
    const StepOptions& options_;
    FoldersThatStay folders_;
};

/// Takes all of them back.
void CarryOut(std::span<FileStep> steps, FileUndo& undo, const Attempt& attempt,
              const StepOptions& options);

/// The paths of music files that stay where the runs have put them, or do not come back.
class FilesThatStay {
  public:
    explicit FilesThatStay(std::span<const FileStep> steps);
    bool Has(std::string_view path) const;

  private:
    std::unordered_set<std::string> paths_;  ///< in small letters
};

}  // namespace quillon
