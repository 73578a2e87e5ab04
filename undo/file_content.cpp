#include "undo/file_content.h"

#include <cstddef>
#include <vector>

namespace quillon {

std::string BytesOf(Files& files, std::string_view path) {
    constexpr std::size_t AtOnce = std::size_t{1} << 20;
    const std::unique_ptr<BinaryReader> reader = files.OpenBinary(path);
    std::string bytes;
    while (true) {
        const std::vector<std::uint8_t> piece = reader->Read(AtOnce);
        if (piece.empty()) return bytes;
        bytes.append(piece.begin(), piece.end());
    }
}

bool Holds(Files& files, std::string_view path, const FileContent& content) {
    if (!files.FileExists(path)) return false;
    const FileEntry entry = files.GetFile(path);
    if (entry.size != content.size) return false;
    if (content.bytes) return BytesOf(files, path) == *content.bytes;
    if (content.hash != 0) return ContentHash(BytesOf(files, path)) == content.hash;
    return !content.modified || entry.modified == *content.modified;
}

}  // namespace quillon
