#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/storage/table.h"

namespace jet::storage {

/// What stands behind a Table; the members are those of Table, without the file's name in errors.
class TableImplementation {
  public:
    virtual ~TableImplementation() = default;

    virtual const TableDefinition& Definition() const = 0;
    virtual std::optional<std::string> ReadOnlyReason() const = 0;
    virtual void Scan(const std::function<void(RowId, Row&&)>& visit) const = 0;
    virtual void ScanColumns(std::span<const std::size_t> columns,
                             const Table::VisitColumns& visit) const = 0;
    virtual Row Read(RowId row) const = 0;
    virtual std::optional<std::vector<RowId>> FindByIndex(std::size_t column, const Value& value,
                                                          std::size_t most) = 0;
    virtual Table::Inserted Insert(std::span<const Value> values) = 0;
    virtual void Update(RowId row, std::span<const FieldChange> changes) = 0;
    virtual void Delete(RowId row) = 0;
    virtual void DeleteAll() = 0;
    virtual std::uint32_t RowCount() const = 0;
    virtual std::int32_t NextAutoNumber() const = 0;

    /// The file that the table is in.
    virtual const std::string& File() const = 0;
};

}  // namespace jet::storage
