#pragma once

#include <string>

#include "platform/host.h"
#include "run/settings.h"

namespace quillon {

/// Why a run must not start with these settings although each of them can be read: a line of the
/// file looks as if it was to set `ID3Reconcile`, nothing sets it, and its default would rename and
/// remove files in this run. "" when nothing is in the way.
std::string ObjectionToMisspeltSetting(Host& host, const Settings& settings);

}  // namespace quillon
