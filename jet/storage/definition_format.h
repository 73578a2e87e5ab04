#pragma once

#include <cstddef>
#include <cstdint>

/// Places and constants inside a table definition, shared by its reader and its writer.
namespace jet::storage::definition_format {

constexpr std::size_t PageHeaderSize = 8, FreeBytesOffset = 2, NextPageOffset = 4;
constexpr std::size_t LengthOffset = 0x08, RowCountOffset = 0x10, AutoNumberOffset = 0x14,
                      AutoNumberStepOffset = 0x18, TableTypeOffset = 0x28, HeaderSize = 0x3F;
constexpr std::size_t LogicalCountOffset = 0x2F, RealCountOffset = 0x33;
constexpr std::size_t ColumnSize = 25, RealIndexSize = 52, LogicalIndexSize = 28,
                      LogicalRealOffset = 8;
constexpr std::size_t StatisticsSize = 12, DistinctKeysOffset = 4;
constexpr std::size_t IndexParts = 10, LongColumnSize = 10;
constexpr std::uint8_t SystemTable = 0x53, UserTable = 0x4E;
constexpr std::uint8_t AscendingFlag = 0x01, CompressedFlag = 0x01;
constexpr std::uint16_t NoColumn = 0xFFFF;
/// Constant numbers at the head of definitions, columns and named indexes, and of real indexes.
constexpr std::uint32_t Marker = 1625, RealIndexMarker = 1923;
constexpr std::uint32_t NoIndex = 0xFFFFFFFF;
/// "Cascades" byte of an index that belongs to no relationship.
constexpr std::uint8_t NoCascade = 4;

}  // namespace jet::storage::definition_format
