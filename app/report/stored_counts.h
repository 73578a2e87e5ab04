#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_set>

#include "changes/change.h"

namespace quillon {

/// What becomes of rows in ways that a summary tells beside albums and tracks that come, change and
/// go.
class StoredCounts {
  public:
    struct Numbers {
        std::size_t songsAdded = 0, artistsAdded = 0;  ///< to the download table
        std::size_t pathsChanged = 0;  ///< rows whose stored path has become another one
        /// Values of songs that have become others. A length, which two fields hold, is one.
        std::size_t valuesChanged = 0;
    };

    /// Of any table, as the run goes on.
    void Note(const RowChange& row);

    const Numbers& Current() const { return numbers_; }

  private:
    void NoteChanged(const RowChange& row);

    std::unordered_set<std::uint64_t> added_;  ///< hashes of the keys of rows that count as added
    Numbers numbers_;
};

}  // namespace quillon
