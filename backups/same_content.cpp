#include "backups/same_content.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillon {
namespace {

constexpr std::size_t PieceSize = 1U << 18U;

bool ReadTheSame(Files& files, std::string_view left, std::string_view right,
                 const BytesWatch& watch) {
    const std::unique_ptr<BinaryReader> one = files.OpenBinary(left);
    const std::unique_ptr<BinaryReader> other = files.OpenBinary(right);
    while (true) {
        const std::vector<std::uint8_t> piece = one->Read(PieceSize);
        if (watch) watch(piece.size());
        if (piece != other->Read(PieceSize)) return false;
        if (piece.size() < PieceSize) return true;
    }
}

/// A file or folder by its path below the folder that is looked through.
struct Inside {
    std::string name;
    bool isFolder = false;
    std::uint64_t size = 0;
    bool operator==(const Inside&) const = default;
};

/// False where not all can be seen.
bool List(Files& files, const std::string& folder, const std::string& inner,
          std::vector<Inside>& list) {
    const Listing<FileEntry> own = files.FilesIn(folder);
    for (const FileEntry& file : own)
        list.push_back({inner + file.name, false, file.size});
    const Listing<FolderEntry> folders = files.SubFolders(folder);
    if (!own.unseen.empty() || !folders.unseen.empty()) return false;
    for (const FolderEntry& one : folders) {
        list.push_back({inner + one.name, true, 0});
        if (!List(files, one.path, inner + one.name + '\\', list)) return false;
    }
    return true;
}

}  // namespace

bool HaveSameBytes(Files& files, std::string_view left, std::string_view right,
                   const BytesWatch& watch) {
    return files.GetFile(left).size == files.GetFile(right).size &&
           ReadTheSame(files, left, right, watch);
}

bool HoldTheSame(Files& files, std::string_view left, std::string_view right,
                 const BytesWatch& watch) {
    const std::string one = std::string(left) + '\\', other = std::string(right) + '\\';
    std::vector<Inside> inOne, inOther;
    if (!List(files, std::string(left), "", inOne)) return false;
    if (!List(files, std::string(right), "", inOther)) return false;
    if (inOne != inOther) return false;
    for (const Inside& entry : inOne) {
        if (!entry.isFolder && !ReadTheSame(files, one + entry.name, other + entry.name, watch))
            return false;
    }
    return true;
}

}  // namespace quillon
