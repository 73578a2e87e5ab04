#pragma once

#include <filesystem>

#include "app/checks/findings.h"

namespace quillon {

/// Finds what an interrupted run has left beside the database at this local path, and tells what
/// the next run does about it. Anything but a file in such a place keeps a reconciliation from
/// starting; `reconciles` says whether the next run is one.
void CheckLeftovers(const std::filesystem::path& database, bool reconciles, Findings& findings);

}  // namespace quillon
