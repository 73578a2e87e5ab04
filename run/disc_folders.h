#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// The number of the disc whose songs a folder of this name holds: 2 of "CD2", "Disc 2", "disk_02"
/// and "CD - 2". The number has one or two digits and is above 0; nothing else may follow.
std::optional<int> DiscOfFolder(std::string_view name);

/// A folder of one disc's songs below that of their album.
struct DiscFolder {
    std::string path;
    int disc = 0;
};

/// Takes the disc folders out of the names of the folders in an album folder. In their order: by
/// number, then by name.
std::vector<DiscFolder> TakeDiscFolders(std::string_view album, std::vector<std::string>& names);

}  // namespace quillon
