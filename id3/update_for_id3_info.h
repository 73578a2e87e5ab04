#pragma once

#include <optional>
#include <string>

namespace quillon {

class Run;

/// A file whose tag was compared, as its track row is to follow it.
struct ComparedFile {
    std::string path;  ///< by its present name
    /// The title in the file's new name when the tag gave it one.
    std::optional<std::string> newTitle;
    std::string track;    ///< the tag's track number, taken when it is a number above 0
    std::string seconds;  ///< the tag's length in seconds, taken where the row knows none
};

/// Brings a file's row among the owned tracks in line with its tag: sound file and title after a
/// rename, track number, length. The row is found by the file's path alone: names may be those of a
/// disc or of a file beside it, and a number above 0 keeps a row from the sweep. A length that is
/// known stays until someone decides between the two. Without such a row nothing is done. Failures
/// are logged with "Update for ID3 Info Error:".
void UpdateForID3Info(Run& run, const ComparedFile& file);

}  // namespace quillon
