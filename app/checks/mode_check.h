#pragma once

#include <iosfwd>

#include "app/checks/findings.h"
#include "platform/portable/path_resolver.h"
#include "run/settings.h"

namespace quillon {

/// Tells which mode would run, its phases and the backups it would make first.
void CheckMode(PathResolver& resolver, const Settings& settings, std::ostream& out,
               Findings& findings);

}  // namespace quillon
