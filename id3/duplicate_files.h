#pragma once

#include <string>
#include <vector>

#include "id3/renames.h"
#include "id3/track_of_file.h"
#include "run/run.h"

namespace quillon {

/// A sound file that is to go as the duplicate of another one.
struct DuplicateFile {
    ComparedFile file;
    std::string twin;         ///< the other file's path
    std::string pathIfKept;   ///< without square brackets or a temporary name; "" for the same
    bool byBrackets = false;  ///< the names differ in square brackets alone
};

/// A rename that waits until a duplicate has gone.
struct WaitingRename {
    std::string to;
    Renames::RowTitle title = Renames::RowTitle::Keep;
    ComparedFile file;  ///< by its present name
};

/// What an album leaves to the end of the comparison.
struct AlbumRest {
    std::vector<DuplicateFile> duplicates;
    std::vector<WaitingRename> renames;
};

/// Whether only files with the same sound are duplicates: [Removed] OnlyIdentical of the host's
/// settings file. Titles are cut in tags, so that two songs may have one there.
bool OnlyIdenticalAreRemoved(Host& host);

/// Removes the duplicates of all albums, if the run may remove so many, and gives waiting files
/// their names. A file is removed if the other one exists under its name. Before that, its row
/// is given to the other file if that has none; else its playlist entries are. What stays is
/// logged, and its row follows its tag. Failures are logged with "VerifyID3TagsFolder".
void RemoveDuplicateFiles(Run& run, std::vector<AlbumRest> rests);

}  // namespace quillon
