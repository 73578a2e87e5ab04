#pragma once

#include <string>
#include <string_view>

#include "reconcile/file_list.h"
#include "reconcile/walk.h"

namespace quillon {

/// Makes sure that each file has a track row in an owned album, moves that row to this album, and
/// hands out the numbers 1 to `album.trackCount` so that each is used once: a new row keeps the
/// number of its tag where it is free, all others take the lowest free ones, oldest file first.
/// A file's failure is logged and the next file is processed.
void ProcessTracks(Walk& walk, const Album& album, FileList& files);

/// A track's title by its file's full path: in the tree layout what follows the first " - ", in the
/// flat layout what follows the last "_", else the file's name; always without ".mp3", which is
/// looked for in lower case only.
///
/// The tree's search runs over the whole path, so that a " - " in a folder's name makes the title
/// begin there and hold backslashes. Titles of existing databases were made like that.
std::string GetTrackName(std::string_view path, bool flatStructure);

}  // namespace quillon
