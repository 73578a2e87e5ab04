#pragma once

#include <string>
#include <vector>

#include "id3/difference_table.h"
#include "id3/duplicate_files.h"
#include "platform/files.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {

/// What the comparison carries from album to album.
struct TagWalk {
    Run& run;
    Steps& steps;
    DifferenceRows& differences;
    std::vector<AlbumRest>& rests;  ///< what albums leave to the end
};

/// Compares the tags of one album's sound files, folder by folder and in name order; renames the
/// files and brings their rows along. Removals wait for the end of the comparison. A file's failure
/// is logged with its path, and the next file is looked at.
void VerifyAlbumTags(TagWalk& walk, const std::string& artist, const FolderEntry& folder);

}  // namespace quillon
