#pragma once

#include <cstddef>
#include <cstdint>

/// Places and constants of a data page; docs/mdb-format.md, section 3.
namespace jet::storage::data_page_format {

constexpr std::size_t FreeBytesOffset = 2;  ///< between the slots' words and the lowest row
constexpr std::size_t OwnerOffset = 4;      ///< definition page of the table, or one of these:
constexpr std::uint32_t LongValueOwner = 0x4C41564C, NoOwner = 0;  ///< the letters LVAL; map rows
constexpr std::size_t SlotCountOffset = 12;
constexpr std::size_t SlotsOffset = 14, SlotSize = 2;  ///< one word for each slot
constexpr std::size_t MostSlots = 255;
/// Parts of a slot's word: where its bytes begin, and what it is.
constexpr std::uint16_t StartMask = 0x1FFF, MovedFlag = 0x4000, HiddenFlag = 0x8000;

}  // namespace jet::storage::data_page_format
