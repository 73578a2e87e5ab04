#pragma once

#include "app/checks/findings.h"

namespace jet {
class Database;
}

namespace quillon {

/// Finds albums that the next reconciliation takes away because they share an identifier, and
/// whether there is a number left for new ones.
void CheckIdentifiers(jet::Database& database, Findings& findings);

}  // namespace quillon
