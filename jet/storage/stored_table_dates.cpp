// How many rows get another date at once.
#include <algorithm>

#include "jet/error.h"
#include "jet/storage/damaged.h"
#include "jet/storage/format/values.h"
#include "jet/storage/stored_table.h"

namespace jet::storage {

std::size_t StoredTable::ReplaceDate(std::size_t column, Date before, Date after) {
    return NamingFile(file_, [&] { return ChangeDates(column, before, after); });
}

/// Only these bytes of each row change, so no row is taken apart and put together again.
std::size_t StoredTable::ChangeDates(std::size_t column, Date before, Date after) {
    RequireChangeable();
    const std::vector<RowId> found = RowsToDate(column, before, after);
    if (found.empty()) return 0;
    Undoably([&] {
        Parts& parts = Current();
        const ColumnLayout& layout = parts.layout.columns[column];
        const Bytes bytes = EncodeScalar(after, layout.Type(), layout.scale);
        for (const RowId row : found) {
            const TableRows::Stored stored = parts.rows.Read(row);
            parts.rows.Overwrite(stored, *RowReader(stored.bytes, parts.layout).Field(layout),
                                 bytes);
        }
        if (RowObserver* const told = Observer()) {
            told->DateReplaced(
                definition_,
                {.column = column, .before = before, .after = after, .rows = found.size()});
        }
    });
    return found.size();
}

/// The rows that hold `before`, where their dates can be replaced.
std::vector<RowId> StoredTable::RowsToDate(std::size_t column, Date before, Date after) const {
    const Parts& parts = Current();
    const ColumnLayout& layout = parts.layout.columns.at(column);
    const bool isInIndex = std::ranges::any_of(parts.indexes, [column](const auto& index) {
        return std::ranges::count(index->Columns(), column) > 0;
    });
    if (isInIndex || layout.Type() != ColumnType::Date || !parts.draft.IsScalar(column)) {
        throw Error(ErrorKind::NotSupported, "Dates of the field " + layout.name + " of table " +
                                                 definition_.name +
                                                 " cannot be replaced all at once.");
    }
    std::vector<RowId> found;
    if (before == after) return found;
    const Bytes old = EncodeScalar(before, layout.Type(), layout.scale),
                wanted = EncodeScalar(after, layout.Type(), layout.scale);
    bool isHeld = false;
    parts.rows.ForEach([&](RowId row, std::span<const std::uint8_t> bytes) {
        const auto field = RowReader(bytes, parts.layout).Field(layout);
        if (!field) return;
        if (std::ranges::equal(*field, old)) found.push_back(row);
        isHeld = isHeld || std::ranges::equal(*field, wanted);
    });
    if (isHeld && !found.empty()) {
        throw Error(ErrorKind::Duplicate, "Rows of table " + definition_.name +
                                              " have this date in the field " + layout.name +
                                              " already.");
    }
    return found;
}

}  // namespace jet::storage
