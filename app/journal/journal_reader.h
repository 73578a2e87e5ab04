#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "changes/change.h"
#include "undo/history.h"

namespace quillon {

/// A line of a journal that cannot be read.
struct DamagedPlace {
    std::size_t line = 0;  ///< from 1
    std::string reason;
    bool isCutShort = false;  ///< the last one, without its end: what a kill leaves
};

/// What can be read of a journal.
struct JournalContent {
    std::string stamp;  ///< by its name
    std::vector<ChangeRecord> records;
    std::vector<DamagedPlace> damaged;
    bool isWhole = false;  ///< its last record says how the run ended
};

/// Calls visit(record) for each record that can be read, one in memory at a time; the answer has no
/// records. Failure: the file cannot be read.
JournalContent VisitJournal(const std::filesystem::path& file,
                            const std::function<void(ChangeRecord&&)>& visit);

/// The same where it does not matter whether all of it can be read.
void VisitRecords(const std::filesystem::path& file,
                  const std::function<void(const ChangeRecord&)>& visit);

/// All of them. Failure: as above.
JournalContent ReadJournal(const std::filesystem::path& file);

/// The journals in a folder, the oldest first; none where there is no such folder.
std::vector<std::filesystem::path> JournalsIn(const std::filesystem::path& folder);

/// How a run ended, by the journal's last line, which alone is read; nothing after a kill.
std::optional<RunEnded> EndOfRun(const std::filesystem::path& file);

/// The run that a journal tells of; of its changes those of the library count. Failure: as above.
PastRun LookAtJournal(const std::filesystem::path& file);

}  // namespace quillon
