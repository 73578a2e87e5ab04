#pragma once

#include <iosfwd>

#include "app/checks/findings.h"
#include "platform/portable/host_folder.h"

namespace quillon {

/// Tells what becomes of music that is not where it was, and finds values of [Library] and
/// [Missing] in the host's settings file that are none.
void CheckMovedMusic(HostFolder& host, std::ostream& out, Findings& findings);

}  // namespace quillon
