#pragma once

#include "app/console.h"
#include "app/requests.h"

namespace quillon {

/// `quillon preview`: the run that the settings choose, with a library that is never saved and
/// files of which none is changed. The exit status: 0 it would change nothing, 1 it would, 2 it
/// could not be found out.
int PreviewRun(const PreviewRequest& request, Console console);

}  // namespace quillon
