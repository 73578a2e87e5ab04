#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// The title that a sound file's name gives its song: the name without every ".mp3" and then
/// without every occurrence of the artist and " - ", whatever the letter case.
std::string SongTitle(std::string_view fileName, std::string_view artist);

/// The text with round brackets for square ones.
std::string RoundBrackets(std::string_view text);

/// Files that swap names need a temporary one: that of "Dawn.mp3" is
/// "Dawn.quillon-renaming.mp3". If a run is killed meanwhile, the next one learns from it what the
/// file was called, and continues.
std::string TemporaryPath(std::string_view path);

/// What a file of such a name or path was called; nothing for any other.
std::optional<std::string> NameBeforeRenaming(std::string_view name);

/// The path that the row of a vanished file has while another file takes that file's name: no file
/// has it, so the row is not taken for another file's.
std::string PathOfVanished(std::string_view path);

}  // namespace quillon
