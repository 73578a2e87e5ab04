#pragma once

#include <iosfwd>
#include <span>

#include "app/checks/findings.h"
#include "driver/modes.h"
#include "platform/portable/path_resolver.h"
#include "run/settings.h"

namespace quillon {

/// Tells of what a run would make dated copies first, and whether they have room.
void CheckBackups(PathResolver& resolver, std::span<const BackedUp> originals,
                  const Settings& settings, std::ostream& out, Findings& findings);

}  // namespace quillon
