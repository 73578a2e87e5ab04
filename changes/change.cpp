#include "changes/change.h"

#include <algorithm>
#include <array>

namespace quillon {

std::uint64_t FirstOfGroup(const FileChange& change) {
    return change.group == 0 ? change.number : change.group;
}

bool IsOfDatedCopy(const FileChange& change) {
    const bool makes =
        change.kind == FileChange::Kind::Copied || change.kind == FileChange::Kind::FolderCopied;
    return (makes ? change.target : change.path).find("_Copy Dated_") != std::string::npos;
}

bool IsOfOwnNotes(const FileChange& change) {
    constexpr std::array<std::string_view, 4> Endings{".playlists", ".sounds", ".missing", ".tags"};
    return std::ranges::any_of(
        Endings, [&change](std::string_view ending) { return change.path.ends_with(ending); });
}

}  // namespace quillon
