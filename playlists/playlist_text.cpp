#include "playlists/playlist_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "database/snapshot_file.h"
#include "platform/failure.h"
#include "platform/files.h"
#include "run/file_bytes.h"

namespace quillon {
namespace {

/// Far more than any list has; what is larger is a mistake, and is not taken into memory.
constexpr std::uint64_t LargestPlaylist = std::uint64_t{64} << 20U;

}  // namespace

std::string ReadPlaylist(Files& files, std::string_view path) {
    const std::unique_ptr<BinaryReader> reader = files.OpenBinary(path);
    const std::uint64_t size = reader->Size();
    if (size > LargestPlaylist)
        throw Failure(FailureNumber::Overflow, std::string(path) + " is too large for a playlist");
    const std::vector<std::uint8_t> bytes = reader->Read(static_cast<std::size_t>(size));
    return {bytes.begin(), bytes.end()};
}

PlaylistContent ContentOf(std::string_view playlist) {
    return {.size = playlist.size(), .fingerprint = Fingerprint(playlist)};
}

bool HasContent(Files& files, std::string_view path, const PlaylistContent& content) {
    return files.FileExists(path) && ContentOf(ReadPlaylist(files, path)) == content;
}

std::vector<std::string_view> LinesOf(std::string_view playlist) {
    std::vector<std::string_view> lines;
    while (!playlist.empty()) {
        const std::size_t end = std::min(playlist.find('\n'), playlist.size());
        std::string_view line = playlist.substr(0, end);
        const bool isEnded = end < playlist.size();
        if (isEnded && line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line);
        playlist.remove_prefix(isEnded ? end + 1 : end);
    }
    return lines;
}

}  // namespace quillon
