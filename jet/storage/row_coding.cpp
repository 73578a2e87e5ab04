#include "jet/storage/row_coding.h"

#include <algorithm>

#include "jet/storage/bytes.h"
#include "jet/storage/damaged.h"
#include "jet/storage/format/values.h"
#include "jet/storage/row_format.h"

namespace jet::storage {

namespace {

std::size_t MaskSize(std::size_t columns) {
    return (columns + 7) / 8;
}

}  // namespace

RowReader::RowReader(std::span<const std::uint8_t> row, const TableLayout& layout) : row_(row) {
    if (row.size() < row_format::FixedPartOffset) ThrowDamaged("a row is too short");
    columns_ = Load<std::uint16_t>(row, row_format::ColumnCountOffset);
    if (MaskSize(columns_) > row.size() - row_format::FixedPartOffset)
        ThrowDamaged("a row is too short");
    mask_ = row.size() - MaskSize(columns_);
    dataEnd_ = mask_;
    if (layout.variableColumnsEver == 0) return;
    if (mask_ < row_format::FixedPartOffset + 2 * row_format::PlaceSize)
        ThrowDamaged("a row is too short");
    variableTable_ = mask_ - 2 * row_format::PlaceSize;
    variables_ = Load<std::uint16_t>(row, mask_ - row_format::PlaceSize);
    const std::size_t tableSize = (variables_ + 2) * row_format::PlaceSize;
    if (tableSize > mask_ - row_format::FixedPartOffset)
        ThrowDamaged("a row's variable part is out of place");
    dataEnd_ = mask_ - tableSize;
}

std::size_t RowReader::Offset(std::size_t slot) const {
    return Load<std::uint16_t>(row_, variableTable_ - slot * row_format::PlaceSize);
}

bool RowReader::Bit(const ColumnLayout& column) const {
    if (column.number >= columns_) return false;
    const unsigned byte = row_[mask_ + column.number / 8U], bit = column.number % 8U;
    return (byte >> bit & 1U) != 0;
}

std::optional<std::span<const std::uint8_t>> RowReader::Field(const ColumnLayout& column) const {
    if (!Bit(column)) return std::nullopt;
    if (column.fixed) {
        const std::size_t start = row_format::FixedPartOffset + column.fixedOffset;
        const std::size_t size = column.StoredSize();
        if (start + size > dataEnd_) ThrowDamaged("a row's fixed part is too short");
        return row_.subspan(start, size);
    }
    if (column.slot >= variables_) return std::nullopt;
    const std::size_t start = Offset(column.slot), end = Offset(column.slot + std::size_t{1});
    if (start > end || start < row_format::FixedPartOffset || end > dataEnd_) {
        ThrowDamaged("a row's variable part is out of place");
    }
    return row_.subspan(start, end - start);
}

RowDraft::RowDraft(const TableLayout& layout)
    : layout_(layout),
      slots_(layout.variableColumnsEver, layout.columns.size()),
      fields_(layout.columns.size()),
      mask_(MaskSize(layout.columnsEver)) {
    std::size_t size = row_format::FixedPartOffset + layout.FixedPartSize();
    if (layout.variableColumnsEver == 0 && size + mask_.size() < SmallestRow)
        size = SmallestRow - mask_.size();
    start_.resize(size);
    for (std::size_t i = 0; i < layout.columns.size(); ++i) {
        const ColumnLayout& column = layout.columns[i];
        scalarSizes_.push_back(column.fixed ? FixedSize(column.Type()) : 0);
        // Whatever its flags say, a Yes/No column is a bit of the mask.
        if (column.fixed || column.Type() == ColumnType::Boolean) continue;
        if (column.slot >= slots_.size())
            ThrowDamaged("a column has no place in the variable part");
        slots_[column.slot] = i;
    }
    Clear();
}

void RowDraft::Clear() {
    std::ranges::fill(fields_, Place());
    std::ranges::fill(start_, std::uint8_t{0});
    std::ranges::fill(mask_, std::uint8_t{0});
    Store(std::span(start_), 0, layout_.columnsEver);
    data_.clear();
}

void RowDraft::SetScalar(std::size_t column, const Value& value) {
    const ColumnLayout& layout = layout_.columns[column];
    const auto place = std::span(start_).subspan(row_format::FixedPartOffset + layout.fixedOffset,
                                                 scalarSizes_[column]);
    StoreScalar(place, value, layout.Type(), layout.scale);
    Mark(column);
}

void RowDraft::MoveToFixedPart(std::size_t column) {
    const ColumnLayout& layout = layout_.columns[column];
    const auto place = std::span(start_).subspan(row_format::FixedPartOffset + layout.fixedOffset,
                                                 layout.StoredSize());
    const auto bytes = Field(column);
    std::ranges::copy(bytes.first(std::min(bytes.size(), place.size())), place.begin());
    data_.resize(fields_[column].start);
    fields_[column] = Place();
}

const Bytes& RowDraft::Build() {
    row_ = start_;
    if (layout_.variableColumnsEver != 0) AppendVariablePart();
    Append(row_, mask_);
    return row_;
}

/// The fields, and behind them where each starts, the last one first, behind where that ends.
void RowDraft::AppendVariablePart() {
    for (const std::size_t column : slots_) {
        if (column < fields_.size()) Append(row_, Field(column));
    }
    std::size_t end = row_.size(), place = end;
    row_.resize(end + (slots_.size() + 2) * row_format::PlaceSize);
    const auto add = [&](std::size_t number) {
        Store(std::span(row_), place, static_cast<std::uint16_t>(number));
        place += row_format::PlaceSize;
    };
    add(end);
    for (std::size_t slot = slots_.size(); slot-- > 0;) {
        if (slots_[slot] < fields_.size()) end -= fields_[slots_[slot]].size;
        add(end);
    }
    add(layout_.variableColumnsEver);
}

void DecodeText(std::span<const std::uint8_t> bytes, Value& value) {
    auto* text = std::get_if<std::string>(&value);
    DecodeText(bytes, text != nullptr ? *text : value.emplace<std::string>());
}

void DecodeField(const ColumnLayout& column, std::span<const std::uint8_t> bytes, Value& value) {
    const ColumnType type = column.Type();
    if (!column.IsKnownType() || type == ColumnType::Binary) {
        value = Bytes(bytes.begin(), bytes.end());
    } else if (type == ColumnType::Text) {
        DecodeText(bytes, value);
    } else if (bytes.size() != FixedSize(type)) {
        ThrowDamaged("column " + column.name + " holds " + std::to_string(bytes.size()) + " bytes");
    } else {
        value = DecodeScalar(bytes, type, column.scale);
    }
}

void AppendField(Bytes& bytes, const ColumnLayout& column, const Value& value) {
    if (column.Type() != ColumnType::Text)
        return AppendScalar(bytes, value, column.Type(), column.scale);
    const std::size_t start = bytes.size();
    AppendText(bytes, std::get<std::string>(value), column.compressed && !column.fixed, false);
    if (!column.fixed) return;
    // Texts of fixed length are filled with blanks.
    while (bytes.size() - start + sizeof(char16_t) <= column.length)
        Append(bytes, u' ');
    bytes.resize(start + column.length);
}

}  // namespace jet::storage
