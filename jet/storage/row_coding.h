#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "jet/storage/table_layout.h"
#include "jet/value.h"

namespace jet::storage {

/// The largest row that a page takes, and the smallest that may be written: each row must have room
/// for a pointer, should it move one day.
constexpr std::size_t LargestRow = 4060, SmallestRow = 4;

/// Takes a stored row apart. Contradictions are Error(Damaged).
class RowReader {
  public:
    /// Both must outlive the reader.
    RowReader(std::span<const std::uint8_t> row, const TableLayout& layout);

    /// The stored bytes of a column; none when it is Null. Not for Booleans.
    std::optional<std::span<const std::uint8_t>> Field(const ColumnLayout& column) const;
    /// A column's bit in the null mask: the value of a Boolean.
    bool Bit(const ColumnLayout& column) const;

  private:
    std::size_t Offset(std::size_t slot) const;

    std::span<const std::uint8_t> row_;
    std::size_t columns_ = 0;        ///< in the table when the row was written
    std::size_t mask_ = 0;           ///< where the null mask begins
    std::size_t variables_ = 0;      ///< slots of the variable table
    std::size_t variableTable_ = 0;  ///< where slot 0 lies; the others lie below it
    std::size_t dataEnd_ = 0;        ///< where the fixed and variable data must end
};

/// What to store in one column: the bytes, or nothing for Null. A Boolean that is true is present
/// and has no bytes.
struct FieldBytes {
    bool present = false;
    std::span<const std::uint8_t> bytes;
};

/// Puts a row together; `fields` belong to `layout.columns`.
Bytes BuildRow(const TableLayout& layout, std::span<const FieldBytes> fields);

/// The value that a column's stored bytes mean. Not for Booleans and long values.
Value DecodeField(const ColumnLayout& column, std::span<const std::uint8_t> bytes);
/// The bytes of a value that was checked before. Not for Null, Booleans and long values.
Bytes EncodeField(const ColumnLayout& column, const Value& value);

}  // namespace jet::storage
