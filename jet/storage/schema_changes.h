#pragma once

#include <string_view>

#include "jet/schema.h"
#include "jet/storage/pager.h"

namespace jet::storage {

/// Changes to the definition of a table that is there. What can be refused is refused before
/// anything is changed; a failure after that leaves the pages between two states, to be given up.

/// Gives back all pages of a table that the catalog does not name any more.
void FreeTable(Pager& pages, PageNumber table);

/// Error(NotSupported) if the table takes part in a relationship, which knows its indexes.
void RequireNoRelationship(Pager& pages, PageNumber table, std::string_view name);

/// Makes the last index of `wanted`, the table's definition with that index, and fills it.
/// Error(Duplicate, Required) if rows do not keep its rules. The index entries of the table must
/// not wait.
void AddIndex(Pager& pages, PageNumber table, const TableDefinition& wanted);

/// Error(NotFound) if there is none of this name.
void RemoveIndex(Pager& pages, PageNumber table, std::string_view tableName,
                 std::string_view index);

}  // namespace jet::storage
