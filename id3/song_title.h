#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// The title that a sound file's name gives its song: the name without every ".mp3" and then
/// without every occurrence of the artist and " - ".
std::string SongTitle(std::string_view fileName, std::string_view artist);

}  // namespace quillon
