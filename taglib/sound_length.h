#pragma once

#include <cstdint>
#include <optional>

#include "taglib/byte_window.h"

namespace quillon {

/// The length in whole seconds of the MPEG sound between two places of a file: as its Xing or VBRI
/// header counts the frames, else by its bit rate, which then counts as constant. A count that the
/// bytes cannot hold (fewer than 8 or more than 320 kbit a second) is not believed. Nothing where
/// no sound is found near the beginning, or where it is shorter than half a second or longer than
/// the database can hold.
std::optional<std::int64_t> SoundSeconds(ByteWindow& file, std::uint64_t begin, std::uint64_t end);

}  // namespace quillon
