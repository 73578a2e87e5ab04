#pragma once

#include "app/console.h"
#include "app/requests.h"

namespace quillon {

/// `quillon check`: tells what a run would do and everything that stands in its way, and changes
/// nothing. DoneStatus when a run could start, else RefusedStatus.
int Check(const CheckRequest& request, Console console);

}  // namespace quillon
