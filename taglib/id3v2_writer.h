#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "taglib/id3v2_frames.h"
#include "tags/tag.h"

namespace quillon {

/// The bytes of a file's tag of version 2, with those texts in it that `wanted` has and the tag
/// says otherwise. An empty text wants nothing; what the tag has no frame for gets none, and all
/// other frames stay byte for byte. As long as it has room, the tag keeps its size. `head`: the
/// whole tag. Nothing where all is said already. Failure (InvalidProcedureCall) where it cannot be
/// taken apart to its end, so that something would be lost.
std::optional<std::vector<std::uint8_t>> ChangedHead(std::span<const std::uint8_t> head,
                                                     const Tag& wanted);

}  // namespace quillon
