#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "jet/storage/journal.h"

namespace jet::storage {

/// What a database file itself says of a commit that is being written into it, whichever of its
/// names it is opened by.
struct JournalNote {
    std::filesystem::path journal;        ///< from the root on
    std::uint64_t file = 0;               ///< FileFacts::number; a copy of the file has another
    std::uint64_t before = 0, after = 0;  ///< fingerprints of the commit counters

    /// Whether the commit is one of a file that has these counters now.
    bool Concerns(const CommitCounters& counters) const;

    std::string Text() const;
    /// None for a text that is no such note.
    static std::optional<JournalNote> Parse(const std::string& text);
};

}  // namespace jet::storage
