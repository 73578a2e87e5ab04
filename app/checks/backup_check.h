#pragma once

#include <iosfwd>
#include <span>

#include "app/checks/findings.h"
#include "driver/modes.h"
#include "platform/files.h"
#include "platform/portable/host_folder.h"
#include "platform/portable/path_resolver.h"
#include "run/settings.h"

namespace quillon {

/// Tells of what a run would make dated copies first, and whether they have room.
void CheckBackups(PathResolver& resolver, std::span<const BackedUp> originals,
                  const Settings& settings, std::ostream& out, Findings& findings);

/// Tells how many backups stay, and finds values of [Backups] in the host's settings file that are
/// none.
void CheckBackupKeeping(HostFolder& host, std::ostream& out, Findings& findings);

/// Finds a restore that was cut short.
void CheckHalfRestored(Files& files, const Settings& settings, Findings& findings);

}  // namespace quillon
