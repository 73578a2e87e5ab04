#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "library/rows.h"

namespace quillon {

/// A row that loses its file, and the path that it gets instead, at which there is no file.
struct PushedOut {
    TrackRow* row;
    std::string path;
};

/// Decides who may take files that have rows: `becomes` holds for each of the lost rows which of
/// the found files it gets, `owners` the row that each of these files has at present, or null.
///
/// No row shall lose its file to somebody else's song, so such a file goes to another row only
/// where its own gets another file. Where songs have moved up one after the other, all of them
/// have, but the first, whose song is gone: it is pushed out. Moves that are not to be are taken
/// out of `becomes`.
std::vector<PushedOut> SettleOwners(std::span<TrackRow* const> lost,
                                    std::span<TrackRow* const> owners,
                                    std::vector<std::optional<std::size_t>>& becomes);

}  // namespace quillon
