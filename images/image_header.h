#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillon {

enum class ImageKind { Jpeg, Png, Gif, Bmp, WebP };

/// What the first bytes of an image file say.
struct ImageHeader {
    ImageKind kind = ImageKind::Jpeg;
    std::uint64_t width = 0, height = 0;  ///< pixels, more than none
};

/// Reads it; nothing for what is none of these kinds or is cut off before it tells its size. The
/// file's name does not matter.
std::optional<ImageHeader> ReadImageHeader(std::string_view image);

}  // namespace quillon
