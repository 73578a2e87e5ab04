#pragma once

#include <iosfwd>

#include "app/checks/findings.h"
#include "platform/portable/host_folder.h"

namespace quillon {

/// Tells how much a run may remove before its brake trips, and finds values of [Safety] in the
/// host's settings file that are none.
void CheckSafety(HostFolder& host, std::ostream& out, Findings& findings);

}  // namespace quillon
