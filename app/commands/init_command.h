#pragma once

#include "app/console.h"
#include "app/requests.h"

namespace quillon {

/// `quillon init`: makes a host folder. Either all of it is made, or nothing is left behind.
/// CommandError when something of it exists already, or the music folder or database does not.
int Init(const InitRequest& request, Console console);

}  // namespace quillon
