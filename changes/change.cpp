#include "changes/change.h"

#include <algorithm>
#include <array>

namespace quillon {

bool IsOfDatedCopy(const FileChange& change) {
    const bool makes =
        change.kind == FileChange::Kind::Copied || change.kind == FileChange::Kind::FolderCopied;
    return (makes ? change.target : change.path).find("_Copy Dated_") != std::string::npos;
}

bool IsOfOwnNotes(const FileChange& change) {
    constexpr std::array<std::string_view, 3> Endings{".playlists", ".sounds", ".missing"};
    return std::ranges::any_of(
        Endings, [&change](std::string_view ending) { return change.path.ends_with(ending); });
}

std::uint64_t ContentHash(std::string_view bytes, std::uint64_t before) {
    constexpr std::uint64_t Prime = 0x100000001b3;
    std::uint64_t hash = before;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * Prime;
    return hash;
}

}  // namespace quillon
