#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillon {

struct Walk;

/// Finds the owned album of this title and artist and gives it its track count, or makes a row for
/// it when it has tracks. Returns its identifier, NoCdjid when there is no row: an album without
/// tracks, or a failure, which is logged.
std::string ProcessOneAlbum(Walk& walk, std::string_view artist, std::string_view title,
                            std::int16_t trackCount);

}  // namespace quillon
