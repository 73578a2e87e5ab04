#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/schema.h"
#include "jet/storage/format/page.h"
#include "jet/value.h"

namespace jet::storage {

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
    virtual ~Table() = default;

    virtual const TableDefinition& Definition() const = 0;

    /// Why rows of this table must not be changed (an index in a sort order that this library does
    /// not know, for example); empty when they may.
    virtual std::optional<std::string> ReadOnlyReason() const = 0;

    /// Calls `visit` for each row in page order and then slot order.
    virtual void Scan(const std::function<void(RowId, Row&&)>& visit) const = 0;

    /// The values of the wanted columns, in their order; they are overwritten with the next row.
    using VisitColumns = std::function<void(RowId, std::span<Value>)>;
    /// The same order with a few columns: the others are not looked at.
    virtual void ScanColumns(std::span<const std::size_t> columns,
                             const VisitColumns& visit) const = 0;

    /// One row. Throws Error(NotFound) if there is none.
    virtual Row Read(RowId row) const = 0;

    /// Rows that have this value, which is not Null and of the column's type, in the column, in the
    /// order of an index that begins with the column. None where there is no such index, or where
    /// they are more than `most`.
    virtual std::optional<std::vector<RowId>> FindByIndex(std::size_t column, const Value& value,
                                                          std::size_t most) = 0;

    /// What Insert made.
    struct Inserted {
        RowId row;
        std::optional<std::int32_t>
            autoNumber;  ///< the number handed out, if there is such a column
    };
    /// Adds a row. A Null in the auto-number column asks for the next number; another value there
    /// is taken as it is and raises the counter where needed.
    virtual Inserted Insert(std::span<const Value> values) = 0;

    /// From now on rows are added behind all others, and not where there is room.
    virtual void KeepOrder() = 0;

    /// Changes columns of one row; its RowId stays.
    virtual void Update(RowId row, std::span<const FieldChange> changes) = 0;

    /// Gives all rows that hold `before` in a column of dates `after` for it; how many. They stay
    /// where they are. Error(Duplicate) where rows hold `after` already: these could not be told
    /// from the others any more. Error(NotSupported) for another type and for a column of an index.
    virtual std::size_t ReplaceDate(std::size_t column, Date before, Date after) = 0;

    virtual void Delete(RowId row) = 0;
    /// Deletes all rows, page by page.
    virtual void DeleteAll() = 0;

    virtual std::uint32_t RowCount() const = 0;

    /// The number that the next row gets in the auto-number column. Error(Overflow) when all are
    /// used up.
    virtual std::int32_t NextAutoNumber() const = 0;
};

}  // namespace jet::storage
