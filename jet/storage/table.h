#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "jet/schema.h"
#include "jet/storage/format/page.h"
#include "jet/value.h"

namespace jet::storage {

class TableImplementation;

/// The values of one row, in the order of TableDefinition::columns.
using Row = std::vector<Value>;

/// New content for one column of a row.
struct FieldChange {
    std::size_t column = 0;  ///< position in TableDefinition::columns
    Value value;
};

/// One table of an open file: its rows, with every index, usage map, counter and long value kept
/// true by each change. Values must already have the type of their column (Error(TypeMismatch)
/// otherwise); sizes, ranges, required columns and unique indexes are checked before anything is
/// written, so that a refused change leaves the table as it was.
class Table {
  public:
    explicit Table(std::unique_ptr<TableImplementation> implementation);
    Table(Table&&) noexcept;
    Table& operator=(Table&&) noexcept;
    ~Table();

    const TableDefinition& Definition() const;

    /// Why rows of this table must not be changed (an index in a sort order that this library does
    /// not know, for example); empty when they may.
    std::optional<std::string> ReadOnlyReason() const;

    /// Calls `visit` for each row in page order and then slot order.
    void Scan(const std::function<void(RowId, Row&&)>& visit) const;

    /// The values of the wanted columns, in their order; they are overwritten with the next row.
    using VisitColumns = std::function<void(RowId, std::span<Value>)>;
    /// The same order with a few columns: the others are not looked at.
    void ScanColumns(std::span<const std::size_t> columns, const VisitColumns& visit) const;

    /// One row. Throws Error(NotFound) if there is none.
    Row Read(RowId row) const;

    /// Rows that have this value, which is not Null and of the column's type, in the column, in the
    /// order of an index that begins with the column. None where there is no such index, or where
    /// they are more than `most`.
    std::optional<std::vector<RowId>> FindByIndex(std::size_t column, const Value& value,
                                                  std::size_t most);

    /// What Insert made.
    struct Inserted {
        RowId row;
        std::optional<std::int32_t>
            autoNumber;  ///< the number handed out, if there is such a column
    };
    /// Adds a row. A Null in the auto-number column asks for the next number; another value there
    /// is taken as it is and raises the counter where needed.
    Inserted Insert(std::span<const Value> values);

    /// Changes columns of one row; its RowId stays.
    void Update(RowId row, std::span<const FieldChange> changes);

    void Delete(RowId row);
    /// Deletes all rows, page by page.
    void DeleteAll();

    std::uint32_t RowCount() const;

    /// The number that the next row gets in the auto-number column. Error(Overflow) when all are
    /// used up.
    std::int32_t NextAutoNumber() const;

  private:
    std::unique_ptr<TableImplementation> implementation_;
};

}  // namespace jet::storage
