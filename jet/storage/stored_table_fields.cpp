// How the values of a row become its bytes.
#include <algorithm>

#include "jet/error.h"
#include "jet/storage/bytes.h"
#include "jet/storage/format/values.h"
#include "jet/storage/long_values.h"
#include "jet/storage/map_row.h"
#include "jet/storage/stored_table.h"

namespace jet::storage {

void StoredTable::SetField(std::size_t position, const Value& value) {
    Parts& parts = Current();
    const ColumnLayout& column = parts.layout.columns[position];
    if (IsNull(value)) return;
    if (column.Type() == ColumnType::Boolean) {
        parts.draft.SetBit(position, std::get<bool>(value));
        return;
    }
    if (parts.draft.IsScalar(position)) return parts.draft.SetScalar(position, value);
    parts.draft.Set(position, [&](Bytes& bytes) {
        if (!column.IsLong()) return AppendField(bytes, column, value);
        const std::size_t start = bytes.size();
        AppendZeros(bytes, LongFieldHeader);
        if (column.Type() == ColumnType::Memo) {
            AppendText(bytes, std::get<std::string>(value), column.compressed, true);
        } else {
            Append(bytes, std::get<Bytes>(value));
        }
        const auto field = std::span(bytes).subspan(start);
        if (field.size() <= LongFieldHeader + LongestInline) return MakeInline(field);
        std::ranges::copy(StoreLongValue(LongPages(position), field.subspan(LongFieldHeader)),
                          field.begin());
        bytes.resize(start + LongFieldHeader);
    });
}

const Bytes& StoredTable::Assemble() {
    while (true) {
        const Bytes& row = Current().draft.Build();
        if (row.size() <= LargestRow) return row;
        if (MoveLongestOut()) continue;
        throw Error(ErrorKind::TooLong, "The row is too long for table " + definition_.name +
                                            ": its fields take " + std::to_string(row.size()) +
                                            " bytes of at most " + std::to_string(LargestRow) +
                                            ".");
    }
}

/// Stores the largest long value that is in the row outside of it; false if there is none.
bool StoredTable::MoveLongestOut() {
    Parts& parts = Current();
    const auto& columns = parts.layout.columns;
    std::size_t longest = columns.size(), size = LongFieldHeader;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const auto field = parts.draft.Field(i);
        if (!columns[i].IsLong() || field.size() <= size || IsOutsideRow(field)) continue;
        longest = i;
        size = field.size();
    }
    if (longest == columns.size()) return false;
    const Bytes data = ReadLongValue(pages_, parts.draft.Field(longest));
    parts.draft.SetBytes(longest, StoreLongValue(LongPages(longest), data));
    return true;
}

RowPages& StoredTable::LongPages(std::size_t column) {
    Parts& parts = Current();
    if (const auto found = parts.longPages.find(column); found != parts.longPages.end()) {
        return found->second;
    }
    const auto number = parts.layout.columns[column].number;
    auto& maps = parts.layout.longColumns;
    const auto entry = std::find_if(maps.begin(), maps.end(),
                                    [number](const auto& map) { return map.column == number; });
    if (entry == maps.end()) {
        throw Error(ErrorKind::NotSupported, "Field " + definition_.columns[column].name +
                                                 " of table " + definition_.name +
                                                 " has no place for long values.");
    }
    if (entry->owned.page == 0 || entry->free.page == 0) {
        MapPages mapPages(pages_);
        if (entry->owned.page == 0) entry->owned = mapPages.Add();
        if (entry->free.page == 0) entry->free = mapPages.Add();
        StoreLongColumnMaps(pages_, parts.layout, static_cast<std::size_t>(entry - maps.begin()));
    }
    const auto [pages, isNew] = parts.longPages.try_emplace(
        column, pages_, data_page_format::LongValueOwner, entry->owned, entry->free);
    return pages->second;
}

}  // namespace jet::storage
