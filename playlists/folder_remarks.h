#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace quillon {

struct Settings;

/// What speaks against the folder that `PlayListPath` names, and what to do; "" when it is a folder
/// for playlists alone. `content` is all that is in it. Failure where that cannot be determined.
std::string PlaylistFolderRemark(Files& files, const Settings& settings,
                                 std::string_view hostFolder,
                                 const std::vector<FolderEntry>& libraryFolders,
                                 const Listing<FileEntry>& content);

}  // namespace quillon
