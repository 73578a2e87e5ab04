#include "run/left_out.h"

namespace quillon {

void LeftOut::Note(LeftOutFor reason, const std::string& path, std::size_t files) {
    Group& group = groups_.at(static_cast<std::size_t>(reason));
    group.files += files;
    ++group.places;
    if (group.paths.size() < MostPaths) group.paths.push_back(path);
}

std::size_t LeftOut::Total() const {
    std::size_t files = 0;
    for (const Group& group : groups_)
        files += group.files;
    return files;
}

}  // namespace quillon
