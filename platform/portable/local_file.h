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

/// Renames a local file, but never onto something else; the system's error number, 0 when it is
/// done, EXDEV between two file systems.
int RenameToFreeName(const std::string& from, const std::string& to);

}  // namespace quillon
