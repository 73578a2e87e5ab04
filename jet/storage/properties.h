#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "jet/schema.h"
#include "jet/value.h"

namespace jet::storage {

/// Names of the columns that a table's property list says need a value. A list in an unknown format
/// says nothing.
std::vector<std::string> RequiredColumns(std::span<const std::uint8_t> properties);

/// The property list of a new table: which columns need a value, and that all texts may be empty.
Bytes PropertiesOf(const TableDefinition& table);

}  // namespace jet::storage
