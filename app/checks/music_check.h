#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "app/checks/findings.h"
#include "app/local_host.h"
#include "run/settings.h"

namespace quillon {

/// Compares the files of the library's own tracks with the library folders: finds folders without
/// music, as the mount point of a drive that is away, a root that is a level too high or too low,
/// and tracks that lie in none of the folders.
void CheckMusic(LocalHost& local, const Settings& settings,
                const std::vector<std::string>& soundFiles, std::ostream& out, Findings& findings);

}  // namespace quillon
