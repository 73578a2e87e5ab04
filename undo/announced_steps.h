#pragma once

#include <functional>
#include <span>
#include <string>

#include "changes/change.h"
#include "changes/journalled_files.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "undo/file_steps.h"

namespace quillon {

/// What an undo works with.
struct UndoMeans {
    Files& files;
    const Clock& clock;
    ChangeSink& journal;
    JournalledFiles::Keeping keeping;
    std::string hostFolder;  ///< as for `FileUndo`
    Writes writes = Writes::Whole;
    std::function<void()> sync = {};  ///< waits until all changes of files are on the disk
};

/// Like CarryOut(), and a power cut leaves no change of which the journal does not tell. A change
/// destroys or moves what perhaps its record alone knows of, so records come to the disk first; for
/// each to wait there alone would take too long. So steps are taken together: first they are tried
/// on a preview, which records what they are going to do, the records are made durable, and then
/// they are done. What does not come off in spite of that is recorded as failed.
///
/// No two steps of a group share a name, so that of each step of a group that was cut off a look at
/// the disk tells whether it was done. Steps that are linked are on the disk before others are
/// recorded. Throws what `attempt`, the journal and `sync` throw; what was not done by then is
/// recorded as failed.
void CarryOutAnnounced(std::span<FileStep> steps, const UndoMeans& means, const Attempt& attempt,
                       const StepOptions& options);

}  // namespace quillon
