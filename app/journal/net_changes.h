#pragma once

#include <span>
#include <vector>

#include "changes/change.h"

namespace quillon {

/// What is different after a run: what it did and took back again is left out.
struct NetChanges {
    std::vector<RowChange> rows;    ///< at most one a row, in the order of the first change
    std::vector<FileChange> files;  ///< that came off, in their order
};

NetChanges NetChangesOf(std::span<const ChangeRecord> records);

/// Whether it concerns the library. The dated copies that a run makes first, what it notes
/// for itself, and the list of differences between tags and database, which each run writes anew,
/// do not.
bool IsOfLibrary(const RowChange& change);
bool IsOfLibrary(const FileChange& change);

/// Whether anything of the library is different.
bool ChangesLibrary(const NetChanges& changes);

}  // namespace quillon
