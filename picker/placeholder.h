#pragma once

#include <cstdint>
#include <vector>

namespace quillon {

/// A small grey JPEG image, 200 x 200, of a record: what stands for a cover where a household has
/// no image of its own for that.
std::vector<std::uint8_t> PlaceholderImage();

}  // namespace quillon
