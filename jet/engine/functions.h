#pragma once

#include "jet/engine/sqlite.h"

namespace jet::engine {

/// Gives the database the collation "jet" and the functions jet_... that translated statements
/// call.
void RegisterFunctions(Sqlite& sqlite);

}  // namespace jet::engine
