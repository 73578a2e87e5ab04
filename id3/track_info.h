#pragma once

#include <string>
#include <string_view>

namespace quillon {

class Run;

/// A song's length in whole seconds and its track number by the database, as SECONDS|TRACK; either
/// is "" when it is not known. Failures are logged with "Get ID3 Track Info Error:".
///
/// While a reconciliation has the numbers set aside, the number is 0 for every owned track.
std::string GetID3TrackInfo(Run& run, std::string_view artist, std::string_view album,
                            std::string_view song);

/// A song's genre by the download table; "" without a row. Failures are logged with "Get ID3 Genre
/// Error:".
std::string GetID3Genre(Run& run, std::string_view artist, std::string_view album,
                        std::string_view song);

}  // namespace quillon
