#pragma once

#include <span>

#include "jet/schema.h"
#include "jet/value.h"

namespace jet {

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

    /// All changes so far are about to reach the file.
    virtual void BeforeCommit() = 0;
    /// They are there for good. Nothing can be kept from happening any more.
    virtual void AfterCommit() = 0;
};

}  // namespace jet
