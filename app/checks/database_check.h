#pragma once

#include <iosfwd>

#include "app/checks/findings.h"
#include "app/local_host.h"
#include "run/settings.h"

namespace quillon {

/// Tells whether the database opens, has every table and field that the tool needs, and knows the
/// music where the settings have it; whether a run may write it. Opened for reading alone.
void CheckDatabase(LocalHost& local, const Settings& settings, std::ostream& out,
                   Findings& findings);

}  // namespace quillon
