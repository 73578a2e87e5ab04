#pragma once

#include <string>
#include <string_view>

namespace quillon {

class Run;

/// What the database says of a file.
struct TrackInfo {
    std::string seconds;  ///< length in whole seconds, "" when it is not known
    std::string track;    ///< number; "" without a row
};

/// Length and number of a file's own row among the owned tracks: that of its path, or of the path
/// that it is to get (as FindRowToRename; "" for none). Other rows of the same names may be those
/// of a disc, or of a file beside it. Failures are logged with "Get ID3 Track Info Error:".
///
/// While a reconciliation has the numbers set aside, the number is 0 for every owned track.
TrackInfo GetID3TrackInfo(Run& run, std::string_view path, std::string_view newPath = "");

/// A song's genre by the download table; "" without a row. Failures are logged with "Get ID3 Genre
/// Error:".
std::string GetID3Genre(Run& run, std::string_view artist, std::string_view album,
                        std::string_view song);

}  // namespace quillon
