#include "app/journal/file_type.h"

#include <algorithm>
#include <array>

#include "platform/basic_text.h"
#include "run/sound_files.h"

namespace quillon {

FileType TypeOfFile(std::string_view path) {
    struct Ending {
        std::string_view text;
        FileType type;
    };
    constexpr std::array<Ending, 11> Endings{{{".pla", FileType::Playlist},
                                              {".m3u", FileType::Playlist},
                                              {".m3u8", FileType::Playlist},
                                              {".jpg", FileType::Image},
                                              {".jpeg", FileType::Image},
                                              {".gif", FileType::Image},
                                              {".bmp", FileType::Image},
                                              {".png", FileType::Image},
                                              {".asp", FileType::Page},
                                              {".htm", FileType::Page},
                                              {".html", FileType::Page}}};
    if (IsSoundFile(path)) return FileType::Music;
    const auto* const found = std::ranges::find_if(Endings, [path](const Ending& ending) {
        return EqualIgnoringCase(Right(path, ending.text.size()), ending.text);
    });
    return found == Endings.end() ? FileType::Other : found->type;
}

}  // namespace quillon
