#include "id3/song_title.h"

#include "platform/basic_text.h"

namespace quillon {

std::string SongTitle(std::string_view fileName, std::string_view artist) {
    return Replace(Replace(fileName, ".mp3", ""), std::string(artist).append(" - "), "");
}

}  // namespace quillon
