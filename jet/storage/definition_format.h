#pragma once

#include <cstddef>
#include <cstdint>

/// Places and constants of a table definition; docs/mdb-format.md, section 5. What follows the head
/// is read and written from front to back.
namespace jet::storage::definition_format {

/// Each of its pages.
constexpr std::size_t FreeBytesOffset = 2, NextPageOffset = 4, PageHeaderSize = 8;

/// Its head, in the first page.
constexpr std::size_t LengthOffset = 0x08;  ///< of it all, page header included
constexpr std::size_t RowCountOffset = 0x10;
constexpr std::size_t AutoNumberOffset = 0x14, AutoNumberStepOffset = 0x18;  ///< the last one
constexpr std::size_t TableTypeOffset = 0x28;
constexpr std::uint8_t SystemTable = 0x53, UserTable = 0x4E;              ///< the letters S and N
constexpr std::size_t LogicalCountOffset = 0x2F, RealCountOffset = 0x33;  ///< named, real indexes
constexpr std::size_t HeaderSize = 0x3F;

/// Statistics of a real index; the keys of it that differ are counted in the middle.
constexpr std::size_t StatisticsSize = 12, DistinctKeysOffset = 4;

/// A column's descriptor.
constexpr std::size_t ColumnSize = 25;
constexpr std::uint8_t CompressedFlag = 0x01;  ///< texts may be compressed

/// A real index's block: its columns, unused ones being NoColumn, and where its pages are.
constexpr std::size_t RealIndexSize = 52, IndexParts = 10;
constexpr std::uint16_t NoColumn = 0xFFFF;  ///< also the end of the long columns
constexpr std::uint8_t AscendingFlag = 0x01;

/// A named index's block, and where it names the real one.
constexpr std::size_t LogicalIndexSize = 28, LogicalRealOffset = 8;
constexpr std::uint32_t NoIndex = 0xFFFFFFFF;  ///< no relationship: the index of the other table
constexpr std::uint8_t NoCascade = 4;          ///< no relationship: what cascades

/// A long column: its number, row pointers of its two maps.
constexpr std::size_t LongColumnSize = 10;

/// Constant numbers at the head of definitions, columns and named indexes, and of real indexes.
constexpr std::uint32_t Marker = 1625, RealIndexMarker = 1923;

}  // namespace jet::storage::definition_format
