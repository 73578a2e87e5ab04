#include <algorithm>

#include "jet/storage/format/values.h"
#include "jet/verify/table_data.h"

namespace jet::verify {

using storage::Load;
using storage::RowId;

namespace {

constexpr std::size_t LongHeader = 12;
constexpr std::uint32_t LengthMask = 0x3FFFFFFF;
enum class LongKind : std::uint8_t { Chain = 0, OneRow = 1, Inline = 2 };

/// Told without taking the text apart: each unit has a byte at least.
bool IsSurelyText(const Column& column, std::span<const std::uint8_t> bytes) {
    return storage::IsCompressedText(bytes)
               ? 2 * (bytes.size() - 2) <= column.length
               : bytes.size() <= column.length && bytes.size() % 2 == 0;
}

/// A long value that the row itself holds.
bool IsWholeInRow(std::span<const std::uint8_t> field) {
    if (field.size() < LongHeader) return false;
    const auto word = Load<std::uint32_t>(field, 0);
    return static_cast<LongKind>(word >> 30) == LongKind::Inline &&
           (word & LengthMask) == field.size() - LongHeader;
}

}  // namespace

void TableData::CheckField(RowId id, const Column& column, std::span<const std::uint8_t> bytes) {
    // Nearly all values are of these kinds, and right.
    if (column.size != 0 && bytes.size() == column.size) return;
    if (column.type == ColumnType::Text && IsSurelyText(column, bytes)) return;
    if (column.IsLong() && IsWholeInRow(bytes)) return;
    const std::string fault = FaultOfField(column, bytes);
    if (fault.empty()) return;
    findings_.Fault(Where() + " row " + Place(id) + " column " + column.name, fault);
}

std::string TableData::FaultOfField(const Column& column, std::span<const std::uint8_t> bytes) {
    std::string fault;
    if (column.IsLong()) {
        ReadLongValue(column, bytes, fault);
    } else if (column.type == ColumnType::Text) {
        if (2 * storage::CountUnits(bytes) > column.length)
            fault = "the text is longer than it may be";
        else if (!storage::IsCompressedText(bytes) && bytes.size() % 2 != 0)
            fault = "the text ends in the middle of a character";
    } else if (column.type == ColumnType::Binary) {
        if (bytes.size() > column.length) fault = "the value is longer than it may be";
    } else if (column.size != 0 && bytes.size() != column.size) {
        fault = "the value has " + std::to_string(bytes.size()) + " bytes";
    }
    return fault;
}

std::optional<Value> TableData::ReadValue(const RowView& row, const Column& column) {
    if (column.type == ColumnType::Boolean) return row.IsSet(column);
    const auto field = row.Field(column);
    if (!field) return Null{};
    if (column.IsLong()) {
        std::string fault;
        auto content = ReadLongValue(column, *field, fault);
        if (!content) return std::nullopt;
        if (column.type == ColumnType::Memo) return storage::DecodeText(*content);
        return std::move(*content);
    }
    if (column.type == ColumnType::Text) return storage::DecodeText(*field);
    if (column.type == ColumnType::Binary) return Bytes(field->begin(), field->end());
    if (column.size == 0 || field->size() != column.size) return std::nullopt;
    return storage::DecodeScalar(*field, column.type, column.scale);
}

std::optional<RowBytes> TableData::LongRow(RowId id, std::string& fault) {
    if (!pages_.Exists(id.page) || pages_.UseOf(id.page) != PageUse::LongValues) {
        fault = "page " + std::to_string(id.page) + " is not one for long values";
        return std::nullopt;
    }
    const auto page = pages_.Read(id.page);
    const Slots slots(page);
    if (id.slot >= slots.Count() || slots.State(id.slot) != SlotState::Row) {
        fault = "there is no piece of a long value at " + Place(id);
        return std::nullopt;
    }
    if (collecting_ && !longRows_.insert(id).second) {
        fault = "the piece at " + Place(id) + " belongs to another value too";
        return std::nullopt;
    }
    return RowBytes{page, slots.Bytes(id.slot)};
}

std::optional<Bytes> TableData::ReadLongValue(const Column& column,
                                              std::span<const std::uint8_t> field,
                                              std::string& fault) {
    if (field.empty()) return Bytes{};
    if (field.size() < LongHeader) {
        fault = "the long value of column " + column.name + " is cut off";
        return std::nullopt;
    }
    const auto word = Load<std::uint32_t>(field, 0);
    const std::size_t length = word & LengthMask;
    const RowId first = RowPointer(field, 4);
    if (length > std::size_t{pages_.Count()} * storage::PageSize) {
        fault = "the long value is longer than the file";
        return std::nullopt;
    }
    Bytes content;
    const auto append = [&content](std::span<const std::uint8_t> bytes) {
        content.insert(content.end(), bytes.begin(), bytes.end());
    };
    switch (static_cast<LongKind>(word >> 30)) {
        case LongKind::Inline:
            append(field.subspan(LongHeader));
            break;
        case LongKind::OneRow: {
            const auto row = LongRow(first, fault);
            if (!row) return std::nullopt;
            append(row->bytes);
            break;
        }
        case LongKind::Chain:
            // Every piece but the pointer adds to the content, so a chain in circles grows too
            // long.
            for (RowId piece = first; piece.page != 0;) {
                const auto row = LongRow(piece, fault);
                if (!row) return std::nullopt;
                if (row->bytes.size() < 5 || content.size() > length) {
                    fault = "a piece of the long value makes no sense";
                    return std::nullopt;
                }
                append(row->bytes.subspan(4));
                piece = RowPointer(row->bytes, 0);
            }
            break;
        default:
            fault = "the long value is of no known kind";
            return std::nullopt;
    }
    if (content.size() != length) {
        fault = "the long value has " + std::to_string(content.size()) + " bytes instead of " +
                std::to_string(length);
        return std::nullopt;
    }
    return content;
}

}  // namespace jet::verify
