#pragma once

namespace quillon {

struct Walk;

/// Walks the library folders in the layout that the settings name and brings the albums and tracks
/// found there into line. Folders or files that the database takes for one album are one, wherever
/// they lie. What cannot be looked into is logged and noted in the walk.
void RefreshDatabaseFolders(Walk& walk);

}  // namespace quillon
