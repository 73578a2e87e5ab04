#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace quillon::bench {

/// How the files are named: "01 - Title.mp3", or "Artist - Title.mp3" with titles that are unique
/// in their album, which the comparison of tags leaves as they are.
enum class FileNames { ByNumber, ByArtist };

/// Albums of six to eighteen tracks.
constexpr std::size_t VariedAlbums = 0;

/// Makes a library of small MP3 files in the tree layout below `root`: the same files, names, tags
/// and times for the same number of tracks, everywhere.
void MakeLibrary(const std::filesystem::path& root, std::size_t tracks, FileNames names,
                 std::size_t tracksAnAlbum = VariedAlbums);

/// What a walk has seen; the sum of bytes keeps the compiler from leaving the reading out.
struct WalkResult {
    std::size_t files = 0;
    std::uint64_t byteSum = 0;
};

/// The yardstick: visits every folder below `root` and reads the last 128 bytes of each file.
WalkResult BareWalk(const std::filesystem::path& root);

}  // namespace quillon::bench
