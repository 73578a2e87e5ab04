#pragma once

#include <iosfwd>

#include "app/checks/findings.h"
#include "platform/portable/host_folder.h"

namespace quillon {

/// Tells which of the keys for music and pages of today are on, and finds values that say neither
/// yes nor no, and keys that nothing reads.
void CheckModernMusic(HostFolder& host, std::ostream& out, Findings& findings);

}  // namespace quillon
