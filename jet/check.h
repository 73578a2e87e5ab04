#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "jet/journal.h"

namespace jet {

/// What CheckFile found. No faults means that the file is whole.
struct CheckReport {
    std::vector<std::string> faults;  ///< one line each: what and where
    JournalState journal;             ///< that the file was read with, where one waits
    std::size_t tables = 0, rows = 0, indexes = 0, entries = 0, pages = 0;
};

/// Reads the whole file without changing it and compares everything that is stored twice: row
/// counts, usage maps, free-space words, every index entry against its row and its order.
/// Throws Error where the file cannot be opened at all.
CheckReport CheckFile(const std::filesystem::path& path);

}  // namespace jet
