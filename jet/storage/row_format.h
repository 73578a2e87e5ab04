#pragma once

#include <cstddef>
#include <cstdint>

/// Places and constants of a row and of the fields of long values; docs/mdb-format.md, sections 6
/// and 8.
namespace jet::storage::row_format {

constexpr std::size_t ColumnCountOffset = 0;  ///< columns there had ever been
constexpr std::size_t FixedPartOffset = 2;
/// From behind: the null mask, how many slots there are, where each starts (the first last), where
/// the variable part ends; two bytes each.
constexpr std::size_t PlaceSize = 2;

/// The field of a long value: length and kind, a row pointer, 4 unused bytes, data that is inline.
constexpr std::size_t LengthOffset = 0, PointerOffset = 4, DataOffset = 12;
constexpr std::uint32_t LengthMask = 0x3FFFFFFF;
constexpr unsigned KindShift = 30;
enum class LongKind : std::uint8_t { Chain = 0, OneRow = 1, Inline = 2 };
constexpr std::size_t LargestPiece = 4076;  ///< bytes of a row that a long value lies in
constexpr std::size_t NextPieceOffset = 0;  ///< in a piece of a chain: row pointer, 0: the last

}  // namespace jet::storage::row_format
