#pragma once

#include <filesystem>
#include <iosfwd>

#include "app/checks/findings.h"
#include "run/settings.h"

namespace quillon {

/// Tells whether the database at this local path opens, has every table and field that the tool
/// needs, and knows the music where the settings have it. Opened for reading alone.
void CheckDatabase(const std::filesystem::path& path, const Settings& settings, std::ostream& out,
                   Findings& findings);

}  // namespace quillon
