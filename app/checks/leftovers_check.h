#pragma once

#include <filesystem>

#include "app/checks/findings.h"

namespace quillon {

/// Finds what an interrupted run has set aside in files beside the database at this local path, and
/// tells what the next run does about it.
void CheckLeftovers(const std::filesystem::path& database, Findings& findings);

}  // namespace quillon
