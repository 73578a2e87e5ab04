#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/files.h"

namespace quillon {

/// Whether a file in an album's folder is the album's cover by its name: cover, folder, front or
/// AlbumArt, as .jpg, .jpeg or .png.
bool IsFolderImage(std::string_view fileName);

/// The best image among a folder's files, as its path; "" where none is a cover. Empty files are
/// none.
std::string BestFolderImage(std::span<const FileEntry> files);

/// The images that a walk has seen in album folders, so that nobody need list the folders again.
class FolderImages {
  public:
    /// All files of a folder.
    void Note(std::string_view folder, std::span<const FileEntry> files);

    /// The path of the folder's best image, "" where it has none; nothing where the walk has not
    /// been there.
    std::optional<std::string> Find(std::string_view folder) const;

  private:
    std::unordered_map<std::string, std::string> images_;  ///< by folder in lower case
};

}  // namespace quillon
