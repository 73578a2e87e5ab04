#include "app/checks/playlists_check.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>

#include "driver/modes.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "playlists/playlist_folder.h"
#include "run/paths.h"
#include "run/removals.h"

namespace quillon {
namespace {

bool HoldsPlaylist(Files& files, const std::string& folder) {
    if (!files.FolderExists(folder)) return false;
    const Listing<FileEntry> list = files.FilesIn(folder);
    return !list.unseen.empty() || std::ranges::any_of(list.entries, [](const FileEntry& file) {
        return HasPlaylistName(file.name);
    });
}

}  // namespace

void CheckPlaylists(LocalHost& local, const Settings& settings,
                    const std::vector<std::string>& stored, Findings& findings) try {
    const std::string& folder = settings.PlayListPath;
    if (folder.empty() || !(WalksLibrary(settings) || settings.PlaylistsOnly)) return;
    const auto count =
        static_cast<std::size_t>(std::ranges::count_if(stored, [&folder](const std::string& path) {
            return HasPlaylistName(path) &&
                   EqualIgnoringCase(path.substr(0, path.rfind('\\') + 1), folder);
        }));
    if (count == 0 || !ReadSafetyLimits(local.host).Brake) return;
    if (HoldsPlaylist(local.files, FolderPath(folder))) return;
    findings.Problem(fmt::format(
        "PlayListPath ({}) holds no playlist at all, and the database has {} there. Is a drive not "
        "mounted? A run would remove nothing and end with an error. If they are gone for good, run "
        "once with --allow-removals, or empty the setting",
        folder, NumberOf(count, Removable::Playlists)));
} catch (const Failure&) {
    return;  // what cannot be listed is reported with the folders
}

}  // namespace quillon
