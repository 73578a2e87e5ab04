#pragma once

#include <vector>

#include "jet/schema.h"

namespace jet::storage::test {

/// A table with a column of every type and indexes of every kind.
TableDefinition EveryTypeTable();

/// A table such as a music library has: auto-number key, texts, a memo, four indexes.
TableDefinition TracksTable();

std::vector<TableDefinition> BothTables();

}  // namespace jet::storage::test
