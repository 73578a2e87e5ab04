#include "jet/storage/long_values.h"

#include <algorithm>
#include <array>
#include <functional>
#include <vector>

#include "jet/error.h"
#include "jet/storage/bytes.h"
#include "jet/storage/damaged.h"
#include "jet/storage/row_format.h"

namespace jet::storage {

namespace {

using Kind = row_format::LongKind;

struct LongField {
    std::size_t length;
    Kind kind;
    std::uint32_t pointer;
};

/// A field without any bytes is an empty value, too.
LongField Parse(std::span<const std::uint8_t> field) {
    if (field.empty()) return {0, Kind::Inline, 0};
    if (field.size() < LongFieldHeader) ThrowDamaged("a long value's field is too short");
    const auto word = Load<std::uint32_t>(field, row_format::LengthOffset);
    const auto kind = word >> row_format::KindShift;
    if (kind > static_cast<std::uint32_t>(Kind::Inline)) {
        ThrowDamaged("a long value is of an unknown kind");
    }
    return {word & row_format::LengthMask, static_cast<Kind>(kind),
            Load<std::uint32_t>(field, row_format::PointerOffset)};
}

using FieldHeader = std::array<std::uint8_t, LongFieldHeader>;

FieldHeader MakeField(std::size_t length, Kind kind, std::uint32_t pointer) {
    FieldHeader field{};
    Store(std::span(field), row_format::LengthOffset,
          static_cast<std::uint32_t>(length) | static_cast<std::uint32_t>(kind)
                                                   << row_format::KindShift);
    Store(std::span(field), row_format::PointerOffset, pointer);
    return field;
}

/// Calls `visit` with each row that the value lies in and that row's part of the data. Stops when
/// the length is reached, so that a chain that leads back into itself ends too.
void ForEachPiece(PageStore& pages, const LongField& field,
                  const std::function<void(RowId, std::span<const std::uint8_t>)>& visit) {
    std::size_t left = field.length;
    // Without this, a chain that runs in a circle could fill the memory.
    if (left > std::size_t{pages.PageCount()} * PageSize) {
        ThrowDamaged("a long value is longer than the file");
    }
    for (std::uint32_t pointer = field.pointer; pointer != 0 && left != 0;) {
        const RowId row = RowIdOf(pointer);
        const auto page = pages.Read(row.page);
        const DataPageView view(*page, row.page);
        const Slot slot = view.At(row.slot);
        if (view.Owner() != data_page_format::LongValueOwner || slot.moved || slot.hidden) {
            ThrowDamaged("a long value leads to a row that is none");
        }
        auto data = view.BytesOf(slot);
        pointer = 0;
        if (field.kind == Kind::Chain) {
            if (data.size() < RowPointerSize) ThrowDamaged("a long value's piece is too short");
            pointer = Load<std::uint32_t>(data, row_format::NextPieceOffset);
            data = data.subspan(RowPointerSize);
            if (data.empty()) ThrowDamaged("a long value has an empty piece");
        }
        data = data.first(std::min(data.size(), left));
        left -= data.size();
        visit(row, data);
    }
    if (left != 0) ThrowDamaged("a long value is shorter than its field says");
}

}  // namespace

std::optional<std::span<const std::uint8_t>> DataInRow(std::span<const std::uint8_t> field) {
    const LongField parsed = Parse(field);
    if (parsed.kind != Kind::Inline) return std::nullopt;
    const auto data = field.subspan(std::min(field.size(), LongFieldHeader));
    if (parsed.length > data.size()) ThrowDamaged("a long value is shorter than its field says");
    return data.first(parsed.length);
}

Bytes ReadLongValue(PageStore& pages, std::span<const std::uint8_t> field) {
    if (const auto inRow = DataInRow(field)) return {inRow->begin(), inRow->end()};
    Bytes data;
    ForEachPiece(pages, Parse(field),
                 [&data](RowId, std::span<const std::uint8_t> piece) { Append(data, piece); });
    return data;
}

std::size_t LongValueLength(std::span<const std::uint8_t> field) {
    return Parse(field).length;
}

bool IsOutsideRow(std::span<const std::uint8_t> field) {
    return Parse(field).kind != Kind::Inline;
}

void MakeInline(std::span<std::uint8_t> field) {
    std::ranges::copy(MakeField(field.size() - LongFieldHeader, Kind::Inline, 0), field.begin());
}

std::array<std::uint8_t, LongFieldHeader> StoreLongValue(RowPages& pages,
                                                         std::span<const std::uint8_t> data) {
    if (data.size() > row_format::LengthMask) {
        throw Error(ErrorKind::TooLong, "The value is longer than a database can hold.");
    }
    if (data.size() <= row_format::LargestPiece) {
        return MakeField(data.size(), Kind::OneRow, PointerTo(pages.Add(data, RowKind::Home)));
    }
    // From the last piece to the first, as each names the one behind it.
    constexpr std::size_t DataPerPiece = row_format::LargestPiece - RowPointerSize;
    std::uint32_t next = 0;
    for (std::size_t end = data.size(); end > 0;) {
        const std::size_t start = (end - 1) / DataPerPiece * DataPerPiece;
        Bytes piece;
        Append(piece, next);
        Append(piece, data.subspan(start, end - start));
        next = PointerTo(pages.Add(piece, RowKind::Home));
        end = start;
    }
    return MakeField(data.size(), Kind::Chain, next);
}

void RemoveLongValue(RowPages& pages, std::span<const std::uint8_t> field) {
    const LongField parsed = Parse(field);
    if (parsed.kind == Kind::Inline) return;
    std::vector<RowId> rows;
    ForEachPiece(pages.Source(), parsed,
                 [&rows](RowId row, std::span<const std::uint8_t>) { rows.push_back(row); });
    for (const RowId row : rows)
        pages.Remove(row);
}

}  // namespace jet::storage
