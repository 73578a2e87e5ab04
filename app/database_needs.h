#pragma once

#include <span>
#include <string>
#include <vector>

#include "jet/schema.h"

namespace quillon {

/// What a database with these tables lacks for the tool's work: tables, fields, and fields that
/// cannot hold what is stored in them; a sentence each. Empty when nothing is missing.
std::vector<std::string> MissingForTheTool(std::span<const jet::TableDefinition> tables);

}  // namespace quillon
