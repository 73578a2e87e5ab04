#pragma once

#include <optional>
#include <string>
#include <sys/stat.h>

namespace quillon {

/// What the system knows of a local path, links followed; nothing where it leads nowhere.
inline std::optional<struct stat> FactsOf(const std::string& path) {
    struct stat facts{};
    if (stat(path.c_str(), &facts) != 0) return std::nullopt;
    return facts;
}

/// The folder of a local path, with the slash at its end.
inline std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// Makes a rename in the folder outlast a power cut. Some file systems cannot do that for a folder;
/// the rename has happened all the same.
void SyncFolder(const std::string& folder);

}  // namespace quillon
