#pragma once

#include <string>
#include <vector>

#include "platform/files.h"

namespace quillon {

class Run;

/// Whether the folder of the setting `PlayListPath` is there.
bool PlaylistFolderExists(Run& run);

/// The files in the playlist folder, in its order. Whatever their extension they count as
/// playlists; only the database and what lies beside it under its name (snapshots, backups) does
/// not, for people who keep both in one folder. Failure: PathNotFound, PermissionDenied.
std::vector<FileEntry> PlaylistFiles(Run& run);

}  // namespace quillon
