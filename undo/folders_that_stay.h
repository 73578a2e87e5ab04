#pragma once

#include <string>
#include <unordered_set>

#include "changes/change.h"

namespace quillon {

/// Folders whose content before a run has not been kept: what the run has put in its place stays,
/// since there would be nothing otherwise. Changes are told in the order in which they are taken
/// back.
class FoldersThatStay {
  public:
    /// This one has to stay as it is.
    void NoteRefused(const FileChange& change);
    /// Whether the change, which is the next one, is about such a folder.
    bool Has(const FileChange& change);

  private:
    bool IsBelow(const std::string& path) const;

    std::unordered_set<std::string> movedAside_, newOnes_;  ///< in small letters
};

}  // namespace quillon
