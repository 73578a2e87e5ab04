#include "playlists/playlist_folder.h"

#include "platform/basic_text.h"
#include "run/run.h"

namespace quillon {
namespace {

/// The setting ends in a backslash; one that was empty is nothing else.
std::string_view FolderPath(const Run& run) {
    const std::string_view path = run.settings.PlayListPath;
    return path.substr(0, path.empty() ? 0 : path.size() - 1);
}

}  // namespace

bool PlaylistFolderExists(Run& run) {
    return run.files.FolderExists(FolderPath(run));
}

std::vector<FileEntry> PlaylistFiles(Run& run) {
    std::vector<FileEntry> files = run.files.FilesIn(FolderPath(run)).entries;
    const std::string database = LowerCase(run.settings.Nirvis_CDJ_DB);
    std::erase_if(files, [&database](const FileEntry& file) {
        return !database.empty() && LowerCase(file.path).starts_with(database);
    });
    return files;
}

}  // namespace quillon
