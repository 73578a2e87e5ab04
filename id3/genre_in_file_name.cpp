#include "id3/genre_in_file_name.h"

#include "run/paths.h"

namespace quillon {

std::string GenreInFileName(std::string_view fileName) {
    const std::string name = GetBaseName(fileName);
    const std::size_t first = name.find('-');
    if (first == std::string::npos) return "";
    const std::size_t second = name.find('-', first + 1);
    if (second == std::string::npos) return "";
    return name.substr(first + 1, second - first - 1);
}

}  // namespace quillon
