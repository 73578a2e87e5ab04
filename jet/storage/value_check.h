#pragma once

#include <string>

#include "jet/schema.h"
#include "jet/value.h"

namespace jet::storage {

/// Refuses a value that a column cannot hold: TypeMismatch, Overflow, TooLong or Required. `table`
/// is for the message. A Null in an auto-number column passes: a number will be handed out.
void CheckValue(const Value& value, const ColumnDefinition& column, const std::string& table);

}  // namespace jet::storage
