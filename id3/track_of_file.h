#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "library/library.h"

namespace quillon {

class Run;

/// The own track of a file that is to get another path: that of its path, else the one that an
/// interrupted run has led on already, under the new path or that of a moment
/// (id3/file_names.h). No file may have the new path. Null where there is none.
TrackRow* FindRowToRename(Library& library, std::string_view path, std::string_view newPath);

/// Whether a stored sound file is the file of this path: it ends with it, letter case aside.
bool IsStoredAs(std::string_view soundFile, std::string_view path);

/// A stored sound file, which is the file of the path `from`, with another path in its place.
std::string StoredAs(std::string_view soundFile, std::string_view from, std::string_view to);

/// The length in seconds that minutes and seconds make, if one of them is above 0.
std::optional<std::int64_t> LengthOf(std::int64_t minutes, std::int64_t seconds);
/// A row's.
std::optional<std::int64_t> LengthOf(const TrackRow& track);

/// What the database says of a file.
struct TrackInfo {
    std::string seconds;  ///< length in whole seconds, "" when it is not known
    std::string track;    ///< number; "" without a row
    TrackRow* row = nullptr;
};

/// Length and number of a file's own row among the owned tracks: that of its path, or of the path
/// that it is to get (as FindRowToRename; "" for none). Other rows of the same names may be those
/// of a disc, or of a file beside it. Failures are logged with "Get ID3 Track Info Error:".
///
/// While a reconciliation has the numbers set aside, the number is 0 for every owned track.
TrackInfo GetID3TrackInfo(Run& run, std::string_view path, std::string_view newPath = "");

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
///
/// `known` is that row where it has been found already and no path has changed since.
void UpdateForID3Info(Run& run, const ComparedFile& file, TrackRow* known = nullptr);

}  // namespace quillon
