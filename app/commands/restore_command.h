#pragma once

#include "app/console.h"
#include "app/requests.h"

namespace quillon {

/// `quillon restore`: puts a backup back in its place, after it was asked for; the exit status.
int Restore(const RestoreRequest& request, Console console);

}  // namespace quillon
