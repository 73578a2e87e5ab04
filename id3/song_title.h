#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// The title that a sound file's name gives its song: the name without every ".mp3" and then
/// without every occurrence of the artist and " - ", whatever the letter case.
std::string SongTitle(std::string_view fileName, std::string_view artist);

/// The text with round brackets for square ones.
std::string RoundBrackets(std::string_view text);

}  // namespace quillon
