#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "changes/change.h"
#include "undo/file_undo.h"
#include "undo/history.h"
#include "undo/outcome.h"

namespace quillon {

/// A change of a file that is to be taken back.
struct FileStep {
    std::string name;  ///< `ChangeName`
    FileChange change;
    Outcome outcome = {};
};

/// The steps that take these runs, the newest first, back: in their order, without the changes that
/// did not come off, what has been taken back, and dated copies, which stay.
std::vector<FileStep> FileStepsFor(std::span<const RecordedRun> runs, const ChangeNames& taken);

/// Takes each back; `beginning` is told of a step before it. The steps' outcomes tell of each.
void CarryOut(std::span<FileStep> steps, FileUndo& undo, const Attempt& attempt,
              const std::function<void(const FileStep& step)>& beginning);

/// The paths of music files that stay where the runs have put them, or do not come back.
class FilesThatStay {
  public:
    explicit FilesThatStay(std::span<const FileStep> steps);
    bool Has(std::string_view path) const;

  private:
    std::unordered_set<std::string> paths_;  ///< in small letters
};

}  // namespace quillon
