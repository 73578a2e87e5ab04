#pragma once

#include <string>
#include <string_view>

#include "platform/basic_text.h"

namespace quillon {

/// The same for all spellings of an artist and a title that the database takes for one album.
inline std::string AlbumKey(std::string_view artist, std::string_view title) {
    return UpperCase(artist) + '\\' + UpperCase(title);
}

}  // namespace quillon
