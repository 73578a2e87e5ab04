#pragma once

#include <cstddef>
#include <cstdint>

#include "jet/storage/format/page.h"

/// Places and constants of usage maps; docs/mdb-format.md, section 4.
namespace jet::storage::usage_map_format {

/// First byte of the row: the bits are in it, or numbers of bitmap pages are.
constexpr std::uint8_t InlineMap = 0, ReferenceMap = 1;
constexpr std::size_t FirstPageOffset = 1;  ///< inline: the page of the first bit
constexpr std::size_t BitsOffset = 5;       ///< inline: the bits, up to the row's end
constexpr std::size_t BitmapPagesOffset = 1, BitmapPageSize = 4;  ///< reference: 0 for none
constexpr std::size_t BitmapBitsOffset = 4;  ///< in a bitmap page, up to its end
constexpr PageNumber LargestPage = 0xFFFFFF;

}  // namespace jet::storage::usage_map_format
