#pragma once

#include <span>
#include <string>

#include "jet/schema.h"
#include "jet/storage/table_layout.h"

namespace jet::storage {

/// The public view of a stored layout. Columns keep their positions; indexes that only back a
/// relationship are left out.
TableDefinition DefinitionOf(const TableLayout& layout, std::string name,
                             std::span<const std::string> requiredColumns);

/// Error(NotSupported) where the last index of a table cannot be made.
void CheckLastIndex(const TableDefinition& definition);
RealIndexLayout RealIndexOf(const IndexDefinition& wanted);

/// The layout of a new table: everything but pages and maps. Error(NotSupported) says what in the
/// definition the format does not allow.
TableLayout LayoutOf(const TableDefinition& definition);

}  // namespace jet::storage
