#pragma once

namespace quillon {

struct Walk;

/// Walks the library folders in the layout that the settings name and brings the albums and tracks
/// found there into line. Folders or files that the database takes for one album are one, wherever
/// they lie. What cannot be looked into is logged and noted in the walk.
void RefreshDatabaseFolders(Walk& walk);

/// Walks the tree layout: artist folders that hold album folders that hold files.
void WalkTree(Walk& walk);

/// Walks the flat layout: sound files of all artists side by side, their names beginning with the
/// artist.
void WalkFlat(Walk& walk);

}  // namespace quillon
