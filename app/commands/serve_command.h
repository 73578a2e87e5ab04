#pragma once

#include "app/console.h"
#include "app/requests.h"

namespace quillon {

/// `quillon serve`: shows the host's web pages on this computer until a signal ends it.
int Serve(const ServeRequest& request, Console console);

}  // namespace quillon
