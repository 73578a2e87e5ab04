#pragma once

#include <vector>

#include "platform/files.h"
#include "run/settings.h"

namespace quillon {

/// The roots that the folder phases walk, in their order: the library root itself, or with
/// `LibraryDepthOption` its sub-folders followed by the existing folders that text files in it
/// name, one a line. Empty when the library root is not there: a root that appears only later in
/// the run has not been looked at, so a sweep must not take an empty list for an empty
/// library.
std::vector<FolderEntry> BuildLibraryFolders(Files& files, const Settings& settings);

}  // namespace quillon
