#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "taglib/id3v2_frames.h"
#include "tags/tag_formats.h"

namespace quillon {

/// Whether a frame is one of a picture.
bool IsPictureFrame(const std::string& name);

/// What a picture's frame promises, by its beginning, which is all that is read of it.
EmbeddedArt ArtIn(const Id3v2Header& header, Id3v2Body& body, const Id3v2Frame& frame);

/// The picture of the tag in these bytes, the whole of it: the one that says to be the front cover,
/// else the first. Nothing where it has none that is whole, JPEG or PNG, and not too large.
std::optional<EmbeddedImage> ArtOfTag(std::span<const std::uint8_t> head);

}  // namespace quillon
