#pragma once

#include "app/console.h"
#include "app/requests.h"

namespace quillon {

/// `quillon changes`: what a run has changed, or which runs there are.
int Changes(const ChangesRequest& request, Console console);

}  // namespace quillon
