#pragma once

#include <array>
#include <string_view>

namespace quillon {

/// Names of the genres that a tag can carry by number: 0 to 79 as version 1 tags define them, 80 to
/// 147 as players extended the list.
extern const std::array<std::string_view, 148> StandardGenreNames;

}  // namespace quillon
