#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "jet/storage/row_format.h"
#include "jet/storage/row_pages.h"
#include "jet/value.h"

namespace jet::storage {

/// What a Memo or OLE field of a row holds: the length, and the data itself or where it lies.
constexpr std::size_t LongFieldHeader = row_format::DataOffset;
/// Longer data lies outside the row.
constexpr std::size_t LongestInline = 64;

/// The data that a long field stands for. `length` bytes at most; contradictions are Damaged.
Bytes ReadLongValue(PageStore& pages, std::span<const std::uint8_t> field);

/// The same where the row itself holds it; none where it lies elsewhere.
std::optional<std::span<const std::uint8_t>> DataInRow(std::span<const std::uint8_t> field);

/// The data's length without reading it.
std::size_t LongValueLength(std::span<const std::uint8_t> field);

/// Fills in the header of a field whose data, kept in the row itself, stands behind it.
void MakeInline(std::span<std::uint8_t> field);

/// Stores data outside the row and returns the field that names it.
std::array<std::uint8_t, LongFieldHeader> StoreLongValue(RowPages& pages,
                                                         std::span<const std::uint8_t> data);

/// Removes data that lies outside the row.
void RemoveLongValue(RowPages& pages, std::span<const std::uint8_t> field);

/// Whether the field names data outside the row.
bool IsOutsideRow(std::span<const std::uint8_t> field);

}  // namespace jet::storage
