#include "playlists/local_list.h"

#include <filesystem>
#include <iterator>
#include <optional>

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// The path as seen from the folder, where they have more in common than the root.
std::string SeenFrom(const fs::path& folder, const std::string& local) {
    const fs::path path(local);
    const auto beginning = [](const fs::path& whole) { return std::next(whole.begin()); };
    const bool isShared = std::distance(folder.begin(), folder.end()) > 1 &&
                          std::distance(path.begin(), path.end()) > 2 &&
                          *beginning(folder) == *beginning(path);
    if (!isShared) return local;
    const std::string relative = path.lexically_relative(folder).generic_string();
    // A line that begins with a # is a remark.
    return relative.starts_with('#') ? "./" + relative : relative;
}

/// A path that names its own protocol is for the player to understand.
bool IsAddress(std::string_view path) {
    return path.find("://") != std::string_view::npos;
}

}  // namespace

LocalList MakeLocalList(Files& files, const std::string& target, std::span<const M3uSong> songs) {
    const std::optional<std::string> here = files.LocalPath(target);
    const fs::path folder = here ? fs::path(*here).parent_path() : fs::path();
    LocalList list;
    list.bytes = std::string(M3uHeader) + '\n';
    for (const M3uSong& song : songs) {
        std::optional<std::string> local;
        if (!IsAddress(song.soundFile)) {
            local = files.LocalPath(song.soundFile);
            if (!local && list.unknownCount++ == 0) list.unknown = song.soundFile;
        }
        list.bytes += song.information + '\n';
        list.bytes += (local ? SeenFrom(folder, *local) : song.soundFile) + '\n';
    }
    return list;
}

}  // namespace quillon
