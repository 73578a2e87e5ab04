#include "playlists/pla_line.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/basic_text.h"

namespace quillon {

std::optional<PlaFields> FirstTwoFields(std::string_view line) {
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) return std::nullopt;
    const std::size_t end = std::min(line.find(' ', blank + 1), line.size());
    return PlaFields{line.substr(0, blank), line.substr(blank + 1, end - blank - 1)};
}

std::optional<PlaFields> ExactlyTwoFields(std::string_view line) {
    const std::optional<PlaFields> fields = FirstTwoFields(line);
    if (!fields || fields->cdjid.empty() || fields->index.empty()) return std::nullopt;
    const bool isAll = fields->cdjid.size() + 1 + fields->index.size() == line.size();
    return isAll ? fields : std::nullopt;
}

std::optional<std::int32_t> WholeIndex(std::string_view index) {
    const std::optional<double> number = ToNumber(index);
    if (!number || std::trunc(*number) != *number) return std::nullopt;
    using Limits = std::numeric_limits<std::int32_t>;
    if (*number < Limits::min() || *number > Limits::max()) return std::nullopt;
    return static_cast<std::int32_t>(*number);
}

std::string PlaLine(std::string_view cdjid, std::int64_t track) {
    std::string line;
    const std::string index = std::to_string(track - 1);
    line.reserve(cdjid.size() + 1 + index.size());
    line += cdjid;
    line += ' ';
    line += index;
    return line;
}

std::string PlaAlbumLine(std::string_view cdjid) {
    return std::string(cdjid) + ' ' + std::string(WholeAlbumIndex);
}

}  // namespace quillon
