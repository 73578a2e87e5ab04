#pragma once

#include <string>
#include <vector>

#include "reconcile/file_list.h"
#include "reconcile/walk.h"

namespace quillon {

/// Brings one album with all its files into line.
void ProcessAlbum(Walk& walk, Album album, FileList files);

/// Writes what the walk has found so far where that was last done some seconds ago: a run that dies
/// shall leave little of it to be done again.
void SaveNowAndThen(Walk& walk);

/// Whether one of these files and folders, which could not be looked at, is a song that the library
/// has. Its album joins those of which something is out of sight.
bool HideAlbumsOf(Walk& walk, const std::vector<std::string>& unseen);

/// All albums with songs below these folders join them: whole library folders, which are away or
/// cannot be listed.
void HideAlbumsBelow(Walk& walk, const std::vector<std::string>& folders);

}  // namespace quillon
