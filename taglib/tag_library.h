#pragma once

#include "tags/tag_formats.h"

namespace quillon {

/// Tags as the TagLib library understands them.
class TagLibrary : public TagFormats {
  public:
    OtherTags Read(BinaryReader& file, std::span<const std::uint8_t> end) override;
    std::string ReadAlbumArtist(BinaryReader& file, std::span<const std::uint8_t> end) override;
    std::optional<EmbeddedImage> ReadArt(BinaryReader& file) override;
    std::optional<HeadChange> Change(BinaryReader& file, const Tag& wanted) override;
};

}  // namespace quillon
