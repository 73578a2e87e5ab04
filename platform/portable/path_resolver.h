#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/portable/drive_table.h"
#include "platform/portable/folder_index.h"
#include "platform/portable/local_file.h"
#include "platform/windows_path.h"

namespace quillon {

/// Where a Windows path leads, with what was seen on the way.
struct LocalPlace {
    std::string path;  ///< as PathResolver::Local() tells it
    /// What the system knows of it, where it is there as it is written and is no link.
    std::optional<FileFacts> facts = {};
    /// Certainly nothing has the path: its folder is there and has no such name.
    bool isFree = false;
};

/// Finds the local path that a Windows path means: through the drive table, then component by
/// component, the exact name first, else one that differs in letter case alone. Symbolic links are
/// followed wherever they lead; the text of a path leads nowhere outside its mapped folder.
class PathResolver {
  public:
    explicit PathResolver(DriveTable drives) : drives_(std::move(drives)) {}

    /// The local path with the names that exist as they are written on the disk, and from the first
    /// one that does not exist on as they are given. Failure: those of ParseWindowsPath,
    /// PathNotFound for a root that is not mapped, and that of a folder that cannot be read where
    /// its names had to be looked through.
    std::string Local(const WindowsPath& path) { return Locate(path).path; }
    std::string Local(std::string_view path) { return Local(ParseWindowsPath(path)); }

    /// The same with what is known of the path by then.
    LocalPlace Locate(const WindowsPath& path);

    /// The local path as the text has it, without a look at the disk.
    std::string Exact(const WindowsPath& path) const;

    /// The local folder that the path's root stands for.
    std::string LocalRoot(const WindowsPath& path) const;

    const DriveTable& Drives() const { return drives_; }
    FolderIndex& Index() { return index_; }

  private:
    LocalPlace Find(const std::string& root, std::string_view rest);

    DriveTable drives_;
    FolderIndex index_;
};

}  // namespace quillon
