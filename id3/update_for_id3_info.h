#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/database.h"

namespace quillon {

class Run;

/// A file whose tag was compared, as its track row is to follow it.
struct ComparedFile {
    std::string path;    ///< by its present name
    std::string artist;  ///< artist folder's name
    std::string album;   ///< album folder's name
    std::string song;    ///< title by the name that the file had when it was compared
    /// The title in the file's new name when the tag gave it one.
    std::optional<std::string> newTitle;
    std::string track;    ///< track number, taken when it is numeric
    std::string seconds;  ///< length in seconds, taken when it is numeric
};

/// Brings a file's row among the owned tracks in line with its tag: sound file and title after a
/// rename, track number, length. `tracks` is a cursor over the table. Only the row of this very
/// file is changed: a number above 0 keeps a row from the sweep, and a row whose file has gone must
/// be swept. Without such a row nothing is done. Failures are logged with "Update for ID3 Info
/// Error:".
void UpdateForID3Info(Run& run, RecordSet& tracks, const ComparedFile& file);

}  // namespace quillon
