#pragma once

#include <cstddef>
#include <span>

#include "jet/schema.h"
#include "jet/value.h"

namespace jet {

/// A date that rows of a table hold, and another that they get for it; no row held that before. So
/// nothing else is needed to take it back.
struct ReplacedDate {
    std::size_t column = 0;  ///< position in TableDefinition::columns
    Date before, after;
    std::size_t rows = 0;  ///< how many have held it
};

/// Is told of the rows of a database that change, whatever changes them, and of the moments at
/// which the changes reach the file. What a statement that fails takes back is told as the opposite
/// changes. Values are in the order of the table's columns and hold only during the call.
///
/// Each function may throw what it likes: what it is told of then does not happen, and what was
/// thrown leaves the call that was to do it.
class RowObserver {
  public:
    virtual ~RowObserver() = default;

    virtual void RowAdded(const TableDefinition& table, std::span<const Value> row) = 0;
    /// The whole row before and after a change that makes a difference.
    virtual void RowChanged(const TableDefinition& table, std::span<const Value> before,
                            std::span<const Value> after) = 0;
    virtual void RowRemoved(const TableDefinition& table, std::span<const Value> row) = 0;
    /// All at once; RowChanged() is not called for them.
    virtual void DateReplaced(const TableDefinition& table, const ReplacedDate& date) = 0;

    /// All changes so far are about to reach the file.
    virtual void BeforeCommit() = 0;
    /// They are there for good. Nothing can be kept from happening any more.
    virtual void AfterCommit() = 0;
};

}  // namespace jet
