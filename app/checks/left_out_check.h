#pragma once

#include "app/checks/findings.h"
#include "platform/files.h"
#include "run/modern_music.h"
#include "run/settings.h"

namespace quillon {

/// Finds the music that a reconciliation passes by because the library's layout has no place for
/// it. Looks at names alone.
void CheckLeftOut(Files& files, const Settings& settings, const ModernMusic& modern,
                  Findings& findings);

}  // namespace quillon
