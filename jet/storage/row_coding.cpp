#include "jet/storage/row_coding.h"

#include <algorithm>

#include "jet/storage/bytes.h"
#include "jet/storage/damaged.h"
#include "jet/storage/format/values.h"

namespace jet::storage {

namespace {

constexpr std::size_t CountSize = 2, OffsetSize = 2;

std::size_t MaskSize(std::size_t columns) {
    return (columns + 7) / 8;
}

}  // namespace

RowReader::RowReader(std::span<const std::uint8_t> row, const TableLayout& layout) : row_(row) {
    if (row.size() < CountSize) ThrowDamaged("a row is too short");
    columns_ = Load<std::uint16_t>(row, 0);
    if (MaskSize(columns_) > row.size() - CountSize) ThrowDamaged("a row is too short");
    mask_ = row.size() - MaskSize(columns_);
    dataEnd_ = mask_;
    if (layout.variableColumnsEver == 0) return;
    if (mask_ < CountSize + 2 * OffsetSize) ThrowDamaged("a row is too short");
    variableTable_ = mask_ - 2 * OffsetSize;
    variables_ = Load<std::uint16_t>(row, mask_ - OffsetSize);
    const std::size_t tableSize = (variables_ + 2) * OffsetSize;
    if (tableSize > mask_ - CountSize) ThrowDamaged("a row's variable part is out of place");
    dataEnd_ = mask_ - tableSize;
}

std::size_t RowReader::Offset(std::size_t slot) const {
    return Load<std::uint16_t>(row_, variableTable_ - slot * OffsetSize);
}

bool RowReader::Bit(const ColumnLayout& column) const {
    if (column.number >= columns_) return false;
    const unsigned byte = row_[mask_ + column.number / 8U], bit = column.number % 8U;
    return (byte >> bit & 1U) != 0;
}

std::optional<std::span<const std::uint8_t>> RowReader::Field(const ColumnLayout& column) const {
    if (!Bit(column)) return std::nullopt;
    if (column.fixed) {
        const std::size_t start = CountSize + column.fixedOffset;
        const std::size_t size = column.StoredSize();
        if (start + size > dataEnd_) ThrowDamaged("a row's fixed part is too short");
        return row_.subspan(start, size);
    }
    if (column.slot >= variables_) return std::nullopt;
    const std::size_t start = Offset(column.slot), end = Offset(column.slot + std::size_t{1});
    if (start > end || start < CountSize || end > dataEnd_) {
        ThrowDamaged("a row's variable part is out of place");
    }
    return row_.subspan(start, end - start);
}

Bytes BuildRow(const TableLayout& layout, std::span<const FieldBytes> fields) {
    const bool hasVariables = layout.variableColumnsEver != 0;
    std::size_t fixedSize = layout.FixedPartSize();
    const std::size_t tail = MaskSize(layout.columnsEver);
    if (!hasVariables && CountSize + fixedSize + tail < SmallestRow) {
        fixedSize = SmallestRow - CountSize - tail;
    }
    std::size_t variableSize = 0;
    std::vector<const FieldBytes*> slots(layout.variableColumnsEver, nullptr);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const ColumnLayout& column = layout.columns[i];
        // Whatever its flags say, a Yes/No column is a bit of the mask.
        if (column.fixed || column.Type() == ColumnType::Boolean) continue;
        if (column.slot >= slots.size()) ThrowDamaged("a column has no place in the variable part");
        slots[column.slot] = &fields[i];
        variableSize += fields[i].bytes.size();
    }

    Bytes row;
    row.reserve(CountSize + fixedSize + variableSize + (slots.size() + 2) * OffsetSize + tail);
    Append(row, layout.columnsEver);
    row.resize(CountSize + fixedSize);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const ColumnLayout& column = layout.columns[i];
        if (!column.fixed || fields[i].bytes.empty()) continue;
        std::copy(fields[i].bytes.begin(), fields[i].bytes.end(),
                  row.begin() + static_cast<std::ptrdiff_t>(CountSize + column.fixedOffset));
    }
    if (hasVariables) {
        std::vector<std::uint16_t> offsets;
        offsets.reserve(slots.size() + 1);
        for (const FieldBytes* field : slots) {
            offsets.push_back(static_cast<std::uint16_t>(row.size()));
            if (field != nullptr) Append(row, field->bytes);
        }
        offsets.push_back(static_cast<std::uint16_t>(row.size()));
        std::for_each(offsets.rbegin(), offsets.rend(), [&](auto offset) { Append(row, offset); });
        Append(row, layout.variableColumnsEver);
    }
    const std::size_t mask = row.size();
    AppendZeros(row, tail);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (!fields[i].present) continue;
        const unsigned number = layout.columns[i].number;
        row[mask + number / 8] |= static_cast<std::uint8_t>(1U << number % 8);
    }
    return row;
}

Value DecodeField(const ColumnLayout& column, std::span<const std::uint8_t> bytes) {
    if (!column.IsKnownType()) return Bytes(bytes.begin(), bytes.end());
    switch (const ColumnType type = column.Type()) {
        case ColumnType::Text:
            return DecodeText(bytes);
        case ColumnType::Binary:
            return Bytes(bytes.begin(), bytes.end());
        default:
            if (bytes.size() != FixedSize(type)) {
                ThrowDamaged("column " + column.name + " holds " + std::to_string(bytes.size()) +
                             " bytes");
            }
            return DecodeScalar(bytes, type, column.scale);
    }
}

Bytes EncodeField(const ColumnLayout& column, const Value& value) {
    if (column.Type() != ColumnType::Text) return EncodeScalar(value, column.Type(), column.scale);
    const std::u16string text = ToUtf16(std::get<std::string>(value));
    if (!column.fixed) return EncodeText(text, column.compressed, false);
    Bytes bytes = EncodeText(text, false, false);
    // Texts of fixed length are filled with blanks.
    while (bytes.size() + sizeof(char16_t) <= column.length)
        Append(bytes, u' ');
    bytes.resize(column.length);
    return bytes;
}

}  // namespace jet::storage
