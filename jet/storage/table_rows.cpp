#include "jet/storage/table_rows.h"

#include <algorithm>
#include <string>

#include "jet/error.h"
#include "jet/storage/bytes.h"
#include "jet/storage/damaged.h"

namespace jet::storage {

namespace {

/// One is usual; more come from other writers. A limit, because pointers may run in a circle.
constexpr int MostMoves = 16;

}  // namespace

TableRows::Stored TableRows::Read(RowId row) const {
    RowId where = row;
    for (int moves = 0; moves <= MostMoves; ++moves) {
        const auto page = pages_.Read(where.page);
        const DataPageView view(*page, where.page);
        if (moves == 0 && (where.slot >= view.SlotCount() || view.At(where.slot).hidden)) {
            throw Error(ErrorKind::NotFound, "The row does not exist any more.");
        }
        const Slot slot = view.At(where.slot);
        if (slot.IsDeleted()) ThrowDamaged("a row has moved to a place that is deleted");
        const auto bytes = view.BytesOf(slot);
        if (!slot.moved) return {page, bytes, where};
        if (bytes.size() < RowPointerSize) ThrowDamaged("a row's pointer is too short");
        where = RowIdOf(Load<std::uint32_t>(bytes, 0));
    }
    ThrowDamaged("row " + std::to_string(row.slot) + " of page " + std::to_string(row.page) +
                 " leads round in a circle");
}

void TableRows::Replace(RowId row, std::span<const std::uint8_t> bytes) {
    const RowId where = Read(row).where;
    const bool moved = where != row;
    if (pages_.Fits(row, bytes.size())) {
        pages_.Replace(row, bytes, RowKind::Home);
        if (moved) pages_.Remove(where);
        return;
    }
    if (moved && pages_.Fits(where, bytes.size())) {
        pages_.Replace(where, bytes, RowKind::Hidden);
        return;
    }
    const RowId target = pages_.Add(bytes, RowKind::Hidden);
    pages_.Redirect(row, target);
    if (moved) pages_.Remove(where);
}

void TableRows::Overwrite(const Stored& row, std::span<const std::uint8_t> old,
                          std::span<const std::uint8_t> bytes) {
    const auto place = old.data() - row.page->data();
    Page& page = pages_.Source().Modify(row.where.page);
    std::ranges::copy(bytes, page.begin() + place);
}

void TableRows::Remove(RowId row) {
    const RowId where = Read(row).where;
    if (where != row) pages_.Remove(where);
    pages_.Remove(row);
}

}  // namespace jet::storage
