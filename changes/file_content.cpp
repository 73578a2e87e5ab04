#include "changes/file_content.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace quillon {

std::string BytesOf(Files& files, std::string_view path, std::uint64_t position,
                    std::uint64_t most) {
    constexpr std::uint64_t AtOnce = std::uint64_t{1} << 20;
    const std::unique_ptr<BinaryReader> reader = files.OpenBinary(path);
    reader->SetPosition(position);
    std::string bytes;
    while (bytes.size() < most) {
        const std::vector<std::uint8_t> piece =
            reader->Read(std::min<std::uint64_t>(AtOnce, most - bytes.size()));
        if (piece.empty()) break;
        bytes.append(piece.begin(), piece.end());
    }
    return bytes;
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
