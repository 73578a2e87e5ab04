#pragma once

#include "app/checks/findings.h"
#include "app/local_host.h"
#include "run/settings.h"

namespace quillon {

/// Tells how many files the comparison of tags would rename and remove, if the chosen mode compares
/// tags. Every file of the library is looked at for that, and nothing is changed.
void CheckTagRenames(LocalHost& local, const Settings& settings, Findings& findings);

}  // namespace quillon
