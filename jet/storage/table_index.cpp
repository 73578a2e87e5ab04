#include "jet/storage/table_index.h"

#include <algorithm>

#include "jet/storage/index/index_key.h"

namespace jet::storage {

TableIndex::TableIndex(PageStore& pages, const TableLayout& layout, std::size_t realIndex)
    : map_(pages, layout.realIndexes[realIndex].map),
      tree_(pages, *this, layout.realIndexes[realIndex].root, layout.Page()) {
    const RealIndexLayout& index = layout.realIndexes[realIndex];
    for (const auto& part : index.parts) {
        const std::size_t position = layout.Position(part.column);
        const ColumnLayout& column = layout.columns.at(position);
        columns_.push_back(position);
        parts_.push_back({column.Type(), column.scale, part.ascending});
    }
    unique_ = (index.flags & RealIndexLayout::UniqueFlag) != 0;
    ignoresNulls_ = (index.flags & RealIndexLayout::IgnoreNullsFlag) != 0;
    refusesNulls_ = (index.flags & RealIndexLayout::RequiredFlag) != 0;
}

bool TableIndex::Uses(std::size_t column) const {
    return std::find(columns_.begin(), columns_.end(), column) != columns_.end();
}

IndexKey TableIndex::KeyOf(std::span<const Value> row) const {
    IndexKey key;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
        const Value& value = row[columns_[i]];
        if (IsNull(value)) {
            key.anyNull = true;
        } else {
            key.allNull = false;
        }
        AppendKey(key.bytes, value, parts_[i].type, parts_[i].scale, parts_[i].ascending);
    }
    return key;
}

bool TableIndex::IsTaken(const IndexKey& key) const {
    return unique_ && !key.allNull && tree_.ContainsKey(key.bytes);
}

std::optional<std::vector<RowId>> TableIndex::RowsWith(const Value& first, std::size_t most) const {
    Bytes start;
    AppendKey(start, first, parts_.front().type, parts_.front().scale, parts_.front().ascending);
    std::vector<RowId> rows;
    tree_.RowsWith(start, [&](RowId row) {
        rows.push_back(row);
        return rows.size() <= most;
    });
    if (rows.size() > most) return std::nullopt;
    return rows;
}

bool TableIndex::Insert(const IndexKey& key, RowId row) {
    if (!Lists(key)) return false;
    const bool mustBeNew = unique_ && !key.allNull;
    const bool isNew = mustBeNew || !tree_.ContainsKey(key.bytes);
    tree_.Insert(key.bytes, row);
    return isNew;
}

void TableIndex::Remove(const IndexKey& key, RowId row) {
    if (Lists(key)) tree_.Remove(key.bytes, row);
}

}  // namespace jet::storage
