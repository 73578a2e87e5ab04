#include "changes/file_content.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillon {
namespace {

/// Calls visit(bytes) for one piece of a file after the other, so many bytes at most in all.
template <typename Visit>
void ReadPieces(Files& files, std::string_view path, std::uint64_t position, std::uint64_t most,
                Visit visit) {
    constexpr std::uint64_t AtOnce = std::uint64_t{1} << 20;
    const std::unique_ptr<BinaryReader> reader = files.OpenBinary(path);
    reader->SetPosition(position);
    while (most > 0) {
        const std::vector<std::uint8_t> piece = reader->Read(std::min(AtOnce, most));
        if (piece.empty()) break;
        most -= piece.size();
        visit(std::string_view(reinterpret_cast<const char*>(piece.data()), piece.size()));
    }
}

std::uint64_t HashOf(Files& files, std::string_view path) {
    std::uint64_t hash = HashOfNothing;
    ReadPieces(files, path, 0, UINT64_MAX,
               [&](std::string_view piece) { hash = ContentHash(piece, hash); });
    return hash;
}

}  // namespace

std::string BytesOf(Files& files, std::string_view path, std::uint64_t position,
                    std::uint64_t most) {
    std::string bytes;
    ReadPieces(files, path, position, most, [&](std::string_view piece) { bytes += piece; });
    return bytes;
}

bool Holds(Files& files, std::string_view path, const FileContent& content) {
    if (!files.FileExists(path)) return false;
    const FileEntry entry = files.GetFile(path);
    if (entry.size != content.size) return false;
    if (content.bytes) return BytesOf(files, path) == *content.bytes;
    if (content.hash != 0) return HashOf(files, path) == content.hash;
    return !content.modified || entry.modified == *content.modified;
}

}  // namespace quillon
