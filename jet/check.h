#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/journal.h"

namespace jet {

/// One contradiction in a file.
struct CheckFault {
    std::string table;  ///< that it concerns; "" for the file as a whole
    std::string text;   ///< one line: where and what
};

/// What CheckFile found. No faults means that the file is whole.
struct CheckReport {
    std::vector<CheckFault> faults;  ///< the first thousand, and at least one of each table
    JournalState journal;            ///< that the file was read with, where one waits
    std::size_t tables = 0, rows = 0, indexes = 0, entries = 0, pages = 0;
};

/// Which tables of a database have to be in good order; without a list all of them. Others are
/// judged when they are asked for.
struct NeededTables {
    std::optional<std::vector<std::string>> names;

    static NeededTables None() { return {std::vector<std::string>{}}; }

    bool Include(std::string_view table) const;
    /// Whether a fault stands in the way of changes to these tables: it is one of theirs, of the
    /// list of tables or of the file as a whole.
    bool AreConcernedBy(const CheckFault& fault) const;
};

/// Reads the whole file without changing it and compares everything that is stored twice: row
/// counts, usage maps, free-space words, every index entry against its row and its order.
/// Throws Error where the file cannot be opened at all.
CheckReport CheckFile(const std::filesystem::path& path);

}  // namespace jet
