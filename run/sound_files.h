#pragma once

#include <string_view>

namespace quillon {

/// Whether a file of this name or path is one of the library's songs: its last four characters are
/// ".mp3" in any letter case, and it is no companion.
bool IsSoundFile(std::string_view name);

/// Whether it is a song of another type, which the library has no place for, such as ".flac".
bool IsOtherAudio(std::string_view name);

/// Whether it is what a Macintosh puts beside a file on a disk of another system: "._x.mp3" beside
/// "x.mp3". It has the ending of that file and nothing else of it.
bool IsCompanion(std::string_view name);

}  // namespace quillon
