#pragma once

#include <cstdint>

#include "platform/thumbnails.h"

namespace quillon {

/// Thumbnails by the GD library.
class GdThumbnails : public Thumbnails {
  public:
    /// An image of more pixels is not looked at: unpacked it takes four bytes for each.
    static constexpr std::uint64_t MostPixels = 30'000'000;

    void Require() override;
    Thumbnail Make(std::string_view image, int side) override;
};

}  // namespace quillon
