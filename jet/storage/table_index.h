#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/storage/index/index_key.h"
#include "jet/storage/index/index_tree.h"
#include "jet/storage/table_layout.h"
#include "jet/storage/usage_map.h"
#include "jet/value.h"

namespace jet::storage {

/// A row's key in one index.
struct IndexKey {
    Bytes bytes;
    bool anyNull = false, allNull = true;
};

/// One index of a table: its tree, the map of its pages and the rules for its keys.
class TableIndex final : private IndexPageListener {
  public:
    /// `pages` must outlive this object.
    TableIndex(PageStore& pages, const TableLayout& layout, std::size_t realIndex);
    TableIndex(const TableIndex&) = delete;
    TableIndex& operator=(const TableIndex&) = delete;
    ~TableIndex() override = default;

    /// Positions of its columns in the table.
    const std::vector<std::size_t>& Columns() const { return columns_; }
    bool Uses(std::size_t column) const;

    /// The key of a row; `valueOf` gives a column's value, and is asked for the index's columns.
    template <typename ValueOf>
    void KeyOf(ValueOf valueOf, IndexKey& key) const {
        key.bytes.clear();
        key.anyNull = false;
        key.allNull = true;
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            const Value& value = valueOf(columns_[i]);
            key.anyNull = key.anyNull || IsNull(value);
            key.allNull = key.allNull && IsNull(value);
            AppendKey(key.bytes, value, parts_[i].type, parts_[i].scale, parts_[i].ascending);
        }
    }
    IndexKey KeyOf(std::span<const Value> row) const;
    /// Whether a row with this key has an entry at all.
    bool Lists(const IndexKey& key) const { return !(ignoresNulls_ && key.allNull); }
    bool RefusesNulls() const { return refusesNulls_; }
    /// Whether the key must not be there twice.
    bool MustBeUnique(const IndexKey& key) const { return unique_ && !key.allNull; }
    /// Whether a key that must not be there twice is there.
    bool Has(const IndexKey& key);

    /// Rows that have this value, which is not Null, in the index's first column. None where they
    /// are more than `most`.
    std::optional<std::vector<RowId>> RowsWith(const Value& first, std::size_t most) const;

    /// Adds the first entries of a sorted batch; not all at once, so that a change of pages that
    /// is undone does not become too large.
    IndexTree::Inserted Insert(const EntryBatch& batch);
    void Remove(const IndexKey& key, RowId row);
    /// Leaves an empty tree.
    void RemoveAll();

  private:
    struct Part {
        ColumnType type;
        std::uint8_t scale;
        bool ascending;
    };

    void PageTaken(PageNumber page) override { map_.Add(page); }
    void PageReleased(PageNumber page) override { map_.Remove(page); }

    PageStore& pages_;
    UsageMap map_;
    IndexTree tree_;
    std::vector<std::size_t> columns_;
    std::vector<Part> parts_;
    bool unique_, ignoresNulls_, refusesNulls_;
    /// The tree's own; not known where it is null.
    std::unique_ptr<std::optional<Bytes>> greatestKey_;
};

}  // namespace jet::storage
