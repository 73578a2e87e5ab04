#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "jet/dialect/functions.h"
#include "jet/engine/statement_cache.h"
#include "jet/storage/table.h"

namespace jet::engine {

/// Identifies a row in the file and in the copy: RowId::AsInteger() of the stored row, [row] of the
/// mirrored one.
using RowKey = std::int64_t;

/// A table of so few rows is searched fast enough without an index.
constexpr std::int64_t SmallTable = 32;

/// A stored table together with its copy in the in-memory database. All changes to rows go through
/// here: first into the storage, which may refuse, then into the copy.
///
/// The copy holds what statements have needed: at first single rows, each with all of its columns;
/// once a statement needs more rows, all rows with the columns that it names. The first time that
/// more columns are needed, these are added; the second time, all the others. A column that has not
/// been copied is Null.
class MirrorTable {
  public:
    /// Makes the copy's table, empty; nothing is owned.
    MirrorTable(Sqlite& sqlite, StatementCache& statements, storage::Table& stored);

    const TableDefinition& Definition() const { return definition_; }
    const std::vector<dialect::ValueKind>& Kinds() const { return kinds_; }

    /// The position of the field with this name in any letter case; Error(NotFound).
    std::size_t Column(std::string_view name) const;

    /// Rows straight from the file, in its order, with these columns alone. The copy is not asked.
    void Scan(std::span<const std::size_t> columns,
              const std::function<void(RowKey, std::span<Value>)>& visit) const;

    /// Whether the copy has all rows with these columns.
    bool Has(std::span<const std::size_t> columns) const;
    /// Adds to the copy what it lacks of all rows with these columns. Error(Interrupted) leaves it
    /// as it was.
    void Load(std::span<const std::size_t> columns);
    /// Adds the rows that have this number in a column to a copy that does not have all rows yet;
    /// they come by an index of the file. False where there is none, or where the copy should
    /// rather have all rows: there are many of these, or many have been asked for already.
    bool LoadRowsWith(std::size_t column, std::int64_t number);
    /// Makes sure that a row of the table is in the copy.
    void Hold(RowKey key);

    /// To be called when the table's indexes have changed.
    void ReadDefinition() { definition_ = stored_->Definition(); }

    /// The file is being closed: the copy can still be read, nothing can be changed.
    void Detach() noexcept { stored_ = nullptr; }

    /// Rows in the file.
    std::size_t StoredRows() const {
        RequireAttached();
        return stored_->RowCount();
    }
    /// Rows in the copy.
    std::int64_t RowCount() const { return rows_; }
    /// Changes whenever a row may have changed.
    std::uint64_t Changes() const { return changes_; }
    std::uint64_t Deletions() const { return deletions_; }
    /// Grows each time the table has become so large that its indexes should be reconsidered.
    std::uint64_t Generation() const { return generation_; }

    /// The row as stored.
    storage::Row Read(RowKey key) const;

    /// The number that the next row gets in the auto-number column.
    std::int64_t NextAutoNumber() const;

    /// Values are converted to the fields' types where they stand, with the errors of
    /// ConvertToField.
    /// The row's number in the auto-number column stands in `number`, where there is one.
    RowKey Insert(std::span<Value> values, std::int64_t* number = nullptr);
    RowKey Insert(storage::Row&& values, std::int64_t* number = nullptr) {
        return Insert(std::span<Value>(values), number);
    }
    /// As storage::Table does.
    void KeepOrder() { stored_->KeepOrder(); }
    /// Writes the changes, whose values are converted already.
    void Update(RowKey key, std::span<const storage::FieldChange> changes);
    /// As storage::Table does.
    std::size_t ReplaceDate(std::size_t column, Date before, Date after);
    void Delete(RowKey key);
    void DeleteAll();

    /// Error(ReadOnly) if rows of this table must not be changed.
    void RequireWritable() const;

  private:
    std::string InsertSql(std::span<const std::size_t> columns) const;
    std::string UpdateSql(std::span<const std::size_t> columns) const;
    void AddRows(std::span<const std::size_t> columns);
    void AddColumns(std::span<const std::size_t> columns);
    std::int64_t CopyScan(std::span<const std::size_t> columns, const std::string& sql);
    void DropAllButSingleRows();
    bool IsHeld(std::size_t column) const;
    void InsertCopy(RowKey key, std::span<const Value> row);
    void CountRow();
    void RequireAttached() const;

    Sqlite& sqlite_;
    StatementCache& statements_;
    storage::Table* stored_;  ///< null after Detach()
    TableDefinition definition_;
    std::vector<dialect::ValueKind> kinds_;
    std::string insertSql_;  ///< of a row with the columns that the copy has
    std::string deleteSql_, updateStart_;
    std::optional<std::size_t> autoNumber_;
    bool hasAllRows_ = false;
    bool completed_ = false;             ///< columns have been added
    std::vector<std::size_t> columns_;   ///< that the copy has
    std::unordered_set<RowKey> single_;  ///< the rows of a copy that does not have all
    std::int64_t lookups_ = 0;           ///< by LoadRowsWith
    std::int64_t rows_ = 0;
    std::int64_t nextGenerationAt_ = 0;
    std::uint64_t changes_ = 0, deletions_ = 0, generation_ = 0;
};

}  // namespace jet::engine
