#pragma once

#include <string_view>

namespace quillon {

/// What a file of a library is to people.
enum class FileType { Music, Playlist, Image, Page, Other };

/// Told by the ending of its name. Pages are those of the album picker.
FileType TypeOfFile(std::string_view path);

}  // namespace quillon
