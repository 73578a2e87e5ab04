#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "changes/change.h"

namespace quillon {

/// What the choice of the runs to take back needs to know of each.
struct PastRun {
    RunStarted started;
    std::optional<RunEnded> ended;  ///< nothing where it was killed, or is still going on
    std::size_t changes = 0;        ///< of rows and files of the library
    bool hasSavedRows = false;      ///< known where it did not come to its end

    bool IsUndo() const { return !started.undoes.empty(); }
};

/// Below zero where the first stamp is the earlier one, 0 for one stamp.
int CompareStamps(std::string_view left, std::string_view right);

/// All runs of a library, the oldest first.
class History {
  public:
    explicit History(std::vector<PastRun> runs) : runs_(std::move(runs)) {}

    const std::vector<PastRun>& Runs() const { return runs_; }

    /// The stamp of the undo that has taken the run back as a whole, "" where none has.
    std::string UndoneBy(std::size_t run) const;

    /// What an undo without a stamp is about: the last run that changed something and has not been
    /// taken back; "" where there is none. An undo that was cut off, or has left something, is
    /// taken up, unless what it was about has been taken back since, or it has been taken back
    /// itself.
    std::string LastToUndo() const;

    /// An undo that was cut off, or has left something, and was started again, perhaps several
    /// times, is one undo in parts, as long as nothing else has changed anything in between. The
    /// stamp of the first part, which is that of the run itself where it has no other, or is no
    /// undo.
    std::string FirstPartOf(std::string_view stamp) const;

    /// The same for an undo of that run that comes next; "" where it is the first part.
    std::string PartBefore(std::string_view undoes) const;

    /// The runs whose files are to be taken back for a way back before the run of this stamp, the
    /// newest first: it and those behind it. Undos only where it is one itself: then those behind
    /// it that have gone further back.
    std::vector<std::size_t> ForFiles(std::string_view stamp) const;

    /// The same for rows, the oldest first, with the undos among them: what they have put back
    /// counts, too. An undo that went further back only counts where it has been taken back itself:
    /// then what has brought everything back is among them as well.
    std::vector<std::size_t> ForRows(std::string_view stamp) const;

    /// The undos since that run, the newest first.
    std::vector<std::size_t> UndosSince(std::string_view stamp) const;

  private:
    std::optional<std::size_t> Find(std::string_view stamp) const;
    /// Whether rows of an undo have been brought back, and are so still.
    bool AreRowsBack(std::size_t undo) const;
    /// Whether a run is among those that an undo behind it takes back.
    bool IsAbout(const PastRun& undo, const PastRun& run) const;
    /// The number of the first part of an undo that has, or would have, the number `undo`.
    std::size_t FirstPart(std::string_view undoes, std::size_t undo) const;

    std::vector<PastRun> runs_;
};

/// One run's records.
struct RecordedRun {
    std::string stamp;
    std::vector<ChangeRecord> records;
    bool isWhole = true;  ///< it came to its end: all of it is on the disk
};

/// Names a change of a file: as in `FileChange::takesBack`.
std::string ChangeName(std::string_view stamp, std::uint64_t number);

using ChangeNames = std::unordered_set<std::string>;

/// Changes of files that have been taken back, and are so still.
struct TakenChanges {
    ChangeNames certain;
    /// Told by undos that were cut off. A power cut may have lost some that were not waited for, so
    /// these count only where a look at the disk does not tell.
    ChangeNames told;
};

/// Undos, the newest first.
TakenChanges TakenBack(std::span<const RecordedRun> undos);

}  // namespace quillon
