#pragma once

#include "jet/dialect/functions.h"
#include "jet/engine/sqlite.h"
#include "jet/value.h"

namespace jet::engine {

/// Binds a field's value as the in-memory database holds it: yes/no as -1 or 0, dates as OLE dates,
/// Currency and Decimal as floating-point numbers (exact to 15 digits), GUIDs as text.
void BindValue(Statement& statement, int parameter, const Value& value);

/// Reads a result of the given kind.
Value ReadValue(const Statement& statement, int column, dialect::ValueKind kind);

}  // namespace jet::engine
