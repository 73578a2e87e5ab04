#pragma once

#include <iosfwd>

#include "app/checks/findings.h"
#include "platform/portable/host_folder.h"
#include "run/settings.h"

namespace quillon {

/// Tells every setting with its value, where that comes from and what is odd about it; the settings
/// as a run would read them.
Settings CheckSettings(Host& host, std::ostream& out, Findings& findings);

/// Finds keys in the tool's section of its settings file that nothing reads.
void CheckUnreadKeys(HostFolder& host, const Settings& settings, Findings& findings);

/// Finds keys there that are set twice, to different values.
void CheckRepeatedKeys(HostFolder& host, Findings& findings);

/// Finds numbers that can be read and make no sense.
void CheckNumbers(const Settings& settings, Findings& findings);

/// Tells what the host's own settings say about links and covers.
void CheckHostSettings(Host& host, std::ostream& out, Findings& findings);

/// Tells whether the host has the plug-in enabled.
void CheckPlugin(Host& host, std::ostream& out, Findings& findings);

}  // namespace quillon
