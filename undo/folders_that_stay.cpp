#include "undo/folders_that_stay.h"

#include <algorithm>

#include "platform/basic_text.h"

namespace quillon {

using Kind = FileChange::Kind;

void FoldersThatStay::NoteRefused(const FileChange& change) {
    if (change.kind == Kind::FolderDeleted) movedAside_.insert(LowerCase(change.path));
}

bool FoldersThatStay::Has(const FileChange& change) {
    const std::string path = LowerCase(change.path), target = LowerCase(change.target);
    if (change.kind != Kind::FolderMoved)
        return IsBelow(path) || (!target.empty() && IsBelow(target));
    // The last of the steps about it, which are taken back from the last to the first.
    if (movedAside_.erase(target) > 0) return true;
    if (!movedAside_.empty()) newOnes_.insert(path);
    return !movedAside_.empty();
}

bool FoldersThatStay::IsBelow(const std::string& path) const {
    return std::ranges::any_of(newOnes_, [&](const std::string& folder) {
        return path == folder || path.starts_with(folder + '\\');
    });
}

}  // namespace quillon
