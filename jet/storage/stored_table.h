#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jet/storage/index/entry_batch.h"
#include "jet/storage/pager.h"
#include "jet/storage/row_coding.h"
#include "jet/storage/table.h"
#include "jet/storage/table_index.h"
#include "jet/storage/table_layout.h"
#include "jet/storage/table_rows.h"

namespace jet::storage {

/// A table whose rows are in this file.
///
/// A new row is on its page at once; its index entries wait, to be put into the indexes in order
/// and leaf by leaf when there are many of them, or before somebody needs them there.
class StoredTable final : public Table, private DeferredChanges {
  public:
    /// Reads the definition that starts on page `definition`. `requiredColumns` names the columns
    /// that refuse Null. `pages` must outlive this object.
    StoredTable(Pager& pages, std::string name, PageNumber definition,
                std::span<const std::string> requiredColumns);

    StoredTable(const StoredTable&) = delete;
    StoredTable& operator=(const StoredTable&) = delete;
    ~StoredTable() override { pages_.Remove(*this); }

    const TableDefinition& Definition() const override { return definition_; }
    std::optional<std::string> ReadOnlyReason() const override { return readOnlyReason_; }
    void Scan(const std::function<void(RowId, Row&&)>& visit) const override;
    void ScanColumns(std::span<const std::size_t> columns,
                     const VisitColumns& visit) const override;
    Row Read(RowId row) const override;
    std::optional<std::vector<RowId>> FindByIndex(std::size_t column, const Value& value,
                                                  std::size_t most) override;
    Inserted Insert(std::span<const Value> values) override;
    void KeepOrder() override { keepsOrder_ = true; }
    void Update(RowId row, std::span<const FieldChange> changes) override;
    std::size_t ReplaceDate(std::size_t column, Date before, Date after) override;
    void Delete(RowId row) override;
    void DeleteAll() override;
    std::uint32_t RowCount() const override;
    std::int32_t NextAutoNumber() const override;

    /// Takes over what has become of the definition in the file. No index entry may be waiting.
    void ReadDefinition(std::span<const std::string> requiredColumns);

    /// Puts the index entries that wait where they belong.
    void MakeNow() override;

    /// One column of one row.
    Value ReadColumn(RowId row, std::size_t column) const;

    /// Error(Damaged) unless everything that the definition names lies inside the file.
    void CheckExtent() const;

  private:
    /// What is made from the definition. Thrown away when a change was undone, as it may know of
    /// things that do not exist any more.
    struct Parts {
        Parts(Pager& pages, PageNumber definition);

        TableLayout layout;
        TableRows rows;
        TableCounters counters;
        std::vector<std::unique_ptr<TableIndex>> indexes;
        std::map<std::size_t, RowPages> longPages;  ///< by column, made on first use
        RowDraft draft;
    };

    /// A row's keys in one index before and after a change.
    struct KeyChange {
        std::size_t index;
        std::optional<IndexKey> before, after;
    };

    Parts& Current() const {
        if (!parts_) parts_ = std::make_unique<Parts>(pages_, page_);
        return *parts_;
    }
    std::optional<std::string> FindReadOnlyReason() const;
    void RequireChangeable() const;
    /// Runs a change as a whole: where it throws, every page is as it was.
    template <typename Action>
    void Undoably(Action action) {
        Pager::Change change(pages_);
        try {
            action();
            change.Keep();
        } catch (...) {
            parts_.reset();
            throw;
        }
    }

    Inserted AddRow(std::span<const Value> values);
    void ChangeRow(RowId row, std::span<const FieldChange> changes);
    std::size_t ChangeDates(std::size_t column, Date before, Date after);
    std::vector<RowId> RowsToDate(std::size_t column, Date before, Date after) const;
    void RemoveRow(RowId row);
    void RemoveAllRows();

    Value Decode(const RowReader& reader, std::size_t column) const;
    void Decode(const RowReader& reader, const ColumnLayout& column, Value& value) const;
    Row DecodeRow(std::span<const std::uint8_t> bytes) const;
    std::vector<std::optional<Value>> EffectiveChanges(const RowReader& old,
                                                       std::span<const FieldChange> changes) const;
    std::vector<KeyChange> KeyChanges(const RowReader& old,
                                      const std::vector<std::optional<Value>>& changes) const;

    void CheckKey(std::size_t index, const IndexKey& key);
    bool IsTaken(std::size_t index, const IndexKey& key);
    bool EntriesMayWait() const;
    void PutWaitingEntries(std::size_t index);
    std::string IndexName(std::size_t realIndex) const;

    void RaiseAutoNumber(std::int32_t number);
    void SetField(std::size_t column, const Value& value);
    const Bytes& Assemble();
    bool MoveLongestOut();
    RowPages& LongPages(std::size_t column);
    void ChangeKey(const KeyChange& change, RowId row);

    /// Who is to be told of this table's rows; null: nobody.
    RowObserver* Observer() const;

    Pager& pages_;
    PageNumber page_;
    std::string file_;
    TableDefinition definition_;
    std::optional<std::string> readOnlyReason_;
    bool keepsOrder_ = false;
    mutable std::unique_ptr<Parts> parts_;
    std::vector<EntryBatch> waiting_;  ///< new entries, by index
    std::vector<IndexKey> newKeys_;    ///< of the row that is being added, by index
};

}  // namespace jet::storage
