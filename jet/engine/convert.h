#pragma once

#include "jet/schema.h"
#include "jet/value.h"

namespace jet::engine {

/// The value as the field stores it: numeric texts become numbers, numbers are rounded to the
/// field's type (halves to the even number), yes/no fields turn Null into no, and so on. Throws
/// Error(TypeMismatch), Error(Overflow) or Error(TooLong) naming the field.
Value ConvertToField(const ColumnDefinition& column, Value value);

/// Whether the field stores the value as it is, which nearly all values are; false where that would
/// take longer to tell than to convert it.
bool IsAsStored(const ColumnDefinition& column, const Value& value);

}  // namespace jet::engine
