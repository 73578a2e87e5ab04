#pragma once

#include <iosfwd>

#include "app/checks/findings.h"
#include "app/local_host.h"
#include "run/settings.h"

namespace quillon {

/// Tells of every folder that the settings name, and of those below the host's own folder, whether
/// it is there. What the chosen mode cannot do without is a problem.
void CheckFolders(LocalHost& local, const Settings& settings, std::ostream& out,
                  Findings& findings);

/// Finds a library of several folders that has none, or whose folders cannot be found out.
void CheckLibraryFolders(Files& files, const Settings& settings, Findings& findings);

/// Finds folders that should not lie in one another, and a playlist folder that is more than that.
void CheckOverlaps(LocalHost& local, const Settings& settings, Findings& findings);

}  // namespace quillon
