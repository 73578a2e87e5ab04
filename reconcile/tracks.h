#pragma once

#include "reconcile/file_list.h"
#include "reconcile/walk.h"

namespace quillon {

/// Makes sure that each file has a track row in an owned album, moves that row to this album, and
/// hands out the numbers 1 to `album.trackCount` so that each is used once: a new row keeps the
/// number of its tag where it is free, all others take the lowest free ones, oldest file first.
/// A file's failure is logged and the next file is processed.
void ProcessTracks(Walk& walk, const Album& album, FileList& files);

}  // namespace quillon
