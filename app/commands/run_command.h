#pragma once

#include "app/requests.h"

namespace quillon {

/// `quillon run`: the one run. Its output goes through a view, to the standard output itself.
/// CommandError and Failure mean that nothing ran.
int RunLibrary(const RunRequest& request);

}  // namespace quillon
