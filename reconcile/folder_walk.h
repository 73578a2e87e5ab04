#pragma once

#include "platform/files.h"

namespace quillon {

struct Walk;

/// Walks one library folder in the layout that the settings name and brings the albums and tracks
/// found there into line. What cannot be looked into is logged and noted in the walk.
void RefreshDatabaseFolder(Walk& walk, const FolderEntry& topFolder);

}  // namespace quillon
