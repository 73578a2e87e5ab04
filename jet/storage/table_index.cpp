#include "jet/storage/table_index.h"

#include <algorithm>

namespace jet::storage {

TableIndex::TableIndex(PageStore& pages, const TableLayout& layout, std::size_t realIndex)
    : pages_(pages),
      map_(pages, layout.realIndexes[realIndex].map),
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
    KeyOf([row](std::size_t column) -> const Value& { return row[column]; }, key);
    return key;
}

/// New rows mostly have a greater key than all others, which takes no look into the tree.
bool TableIndex::Has(const IndexKey& key) {
    if (!greatestKey_) greatestKey_ = std::make_unique<std::optional<Bytes>>(tree_.GreatestKey());
    return *greatestKey_ && key.bytes <= **greatestKey_ && tree_.ContainsKey(key.bytes);
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

IndexTree::Inserted TableIndex::Insert(const EntryBatch& batch) {
    constexpr std::size_t MostLeaves = 64;
    greatestKey_.reset();
    return tree_.Insert(batch, MostLeaves);
}

void TableIndex::RemoveAll() {
    greatestKey_.reset();
    tree_.MakeEmpty();
    for (const PageNumber page : map_.Pages()) {
        if (page == tree_.Root()) continue;
        map_.Remove(page);
        pages_.Free(page);
    }
}

void TableIndex::Remove(const IndexKey& key, RowId row) {
    greatestKey_.reset();
    if (Lists(key)) tree_.Remove(key.bytes, row);
}

}  // namespace jet::storage
