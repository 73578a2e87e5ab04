#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/dialect/functions.h"
#include "jet/engine/statement_cache.h"
#include "jet/storage/table.h"

namespace jet::engine {

/// A row's name in both worlds: RowId::AsInteger() of the stored row, [row] of the mirrored one.
using RowKey = std::int64_t;

/// Rows of a table that is searched in no time without an index.
constexpr std::int64_t SmallTable = 32;

/// A stored table together with its copy in the in-memory database. All changes to rows go through
/// here: first into the storage, which may refuse, then into the copy.
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

    /// Fills the copy on the first call.
    void Load();

    /// The file is being closed: the copy can still be read, nothing can be changed.
    void Detach() noexcept { stored_ = nullptr; }

    std::int64_t RowCount() const { return rows_; }
    /// Differs whenever a row may have changed.
    std::uint64_t Changes() const { return changes_; }
    std::uint64_t Deletions() const { return deletions_; }
    /// Grows each time the table has become so large that its indexes should be thought over.
    std::uint64_t Generation() const { return generation_; }

    /// The row as stored.
    storage::Row Read(RowKey key) const;

    /// The number that the next row gets in the auto-number column.
    std::int64_t NextAutoNumber() const;

    /// Values are converted to the fields' types, with the errors of ConvertToField.
    /// The row's number in the auto-number column stands in `number`, where there is one.
    RowKey Insert(storage::Row values, std::int64_t* number = nullptr);
    /// Writes the changes, whose values are converted already.
    void Update(RowKey key, std::span<const storage::FieldChange> changes);
    void Delete(RowKey key);

    /// Error(ReadOnly) if rows of this table must not be changed.
    void RequireWritable() const;

  private:
    void InsertCopy(Statement& insert, RowKey key, std::span<const Value> values);
    void CountRow();
    void RequireAttached() const;

    Sqlite& sqlite_;
    StatementCache& statements_;
    storage::Table* stored_;  ///< null after Detach()
    TableDefinition definition_;
    std::vector<dialect::ValueKind> kinds_;
    std::string insertSql_, deleteSql_, updateStart_;
    std::optional<std::size_t> autoNumber_;
    bool loaded_ = false;
    std::int64_t rows_ = 0;
    std::int64_t nextGenerationAt_ = 0;
    std::uint64_t changes_ = 0, deletions_ = 0, generation_ = 0;
};

}  // namespace jet::engine
