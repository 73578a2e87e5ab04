#include "driver/library_folders.h"

#include <string>
#include <string_view>

#include "run/library_lists.h"
#include "run/paths.h"

namespace quillon {
namespace {

FolderEntry FolderAt(std::string_view written) {
    std::string path = FolderPath(written);
    std::string name = path.substr(path.rfind('\\') + 1);
    return {std::move(path), std::move(name)};
}

}  // namespace

std::vector<FolderEntry> BuildLibraryFolders(Files& files, const Settings& settings) {
    const std::string& root = settings.LibraryRoot;
    if (root.empty() || !files.FolderExists(root)) return {};
    if (!settings.LibraryDepthOption) return {FolderAt(root)};

    std::vector<FolderEntry> folders = files.SubFolders(root).entries;
    for (const std::string& line : ListedLibraryFolders(files, root)) {
        // Walking one of which nobody can tell says what is wrong with it, and keeps its rows.
        if (FolderMayExist(files, line)) folders.push_back(FolderAt(line));
    }
    return folders;
}

}  // namespace quillon
