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

/// A row under construction. Its memory is used for one row after the other.
class RowDraft {
  public:
    /// `layout` must outlive this object.
    explicit RowDraft(const TableLayout& layout);

    /// Starts a new row: all columns are Null.
    void Clear();
    void SetBit(std::size_t column, bool value) {
        if (value) Mark(column);
    }
    /// Gives a column a value: `append` adds the bytes to those that it is given.
    template <typename AppendValue>
    void Set(std::size_t column, AppendValue append) {
        const std::size_t start = data_.size();
        append(data_);
        fields_[column] = {start, data_.size() - start};
        Mark(column);
        if (layout_.columns[column].fixed) MoveToFixedPart(column);
    }
    void SetBytes(std::size_t column, std::span<const std::uint8_t> bytes) {
        Set(column, [bytes](Bytes& data) { data.insert(data.end(), bytes.begin(), bytes.end()); });
    }
    /// Whether it is a column of the fixed part, with a type of fixed size.
    bool IsScalar(std::size_t column) const { return scalarSizes_[column] != 0; }
    /// Gives such a column a value.
    void SetScalar(std::size_t column, const Value& value);

    /// What a column of the variable part was set to; nothing for Null.
    std::span<const std::uint8_t> Field(std::size_t column) const {
        return std::span(data_).subspan(fields_[column].start, fields_[column].size);
    }

    /// Puts the row together; it stays until the next call.
    const Bytes& Build();

  private:
    void Mark(std::size_t column) {
        const unsigned number = layout_.columns[column].number;
        mask_[number / 8] |= static_cast<std::uint8_t>(1U << number % 8);
    }
    void MoveToFixedPart(std::size_t column);
    void AppendVariablePart();

    struct Place {
        std::size_t start = 0, size = 0;
    };

    const TableLayout& layout_;
    std::vector<std::size_t> slots_;        ///< the columns of the variable part, in its order
    std::vector<std::size_t> scalarSizes_;  ///< by column; 0 for others
    std::vector<Place> fields_;
    Bytes start_, data_, mask_, row_;  ///< the row's beginning with the fixed part, and its end
};

/// Puts the value that a column's stored bytes mean in the place of another, whose memory is used
/// again. Not for Booleans and long values.
void DecodeField(const ColumnLayout& column, std::span<const std::uint8_t> bytes, Value& value);
/// The same for the data of texts.
void DecodeText(std::span<const std::uint8_t> bytes, Value& value);
/// Appends the bytes of a value that was checked before. Not for Null, Booleans and long values.
void AppendField(Bytes& bytes, const ColumnLayout& column, const Value& value);

}  // namespace jet::storage
