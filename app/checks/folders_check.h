#pragma once

#include <iosfwd>
#include <string_view>

#include "app/checks/findings.h"
#include "platform/files.h"
#include "run/settings.h"

namespace quillon {

/// Tells of every folder that the settings name, and of those below the host's own folder
/// `appPath`, whether it is there. What the chosen mode cannot do without is a problem.
void CheckFolders(Files& files, const Settings& settings, std::string_view appPath,
                  std::ostream& out, Findings& findings);

}  // namespace quillon
