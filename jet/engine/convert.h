#pragma once

#include "jet/schema.h"
#include "jet/value.h"

namespace jet::engine {

/// The value as the field stores it: numeric texts become numbers, numbers are rounded to the
/// field's type (halves to the even number), yes/no fields turn Null into no, and so on. Throws
/// Error(TypeMismatch), Error(Overflow) or Error(TooLong) naming the field.
Value ConvertToField(const ColumnDefinition& column, const Value& value);
/// The same where the value stands; a text that fits is not copied.
void ConvertInPlace(const ColumnDefinition& column, Value& value);

}  // namespace jet::engine
