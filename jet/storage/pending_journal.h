#pragma once

#include <filesystem>
#include <optional>

#include "jet/journal.h"
#include "jet/storage/file_system.h"
#include "jet/storage/journal.h"

namespace jet::storage {

/// The name of a database's journal.
std::filesystem::path JournalPathFor(const std::filesystem::path& database);

/// Where a journal is made.
std::filesystem::path UnfinishedJournalPathFor(const std::filesystem::path& journal);

/// The commit counters in the file.
CommitCounters CountersOnDisk(File& database, const std::filesystem::path& path);

/// What was left by a commit that did not come to its end.
struct PendingJournal {
    JournalState state;
    std::optional<JournalReader> reader;  ///< of one that waits
    bool isNoted = false;  ///< the file has a note of a journal, whatever became of it
};

/// Looks for the journal of an open database: the one that the file's own note names, also where it
/// has not got its final name yet, else the one beside `path`. Error(Damaged) where the file was
/// being written under another of its names and that journal is missing.
PendingJournal FindJournal(FileSystem& files, File& database, const std::filesystem::path& path);

}  // namespace jet::storage
