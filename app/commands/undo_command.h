#pragma once

#include "app/console.h"
#include "app/requests.h"

namespace quillon {

/// `quillon undo`: takes runs back, after it has shown how and was told to.
int Undo(const UndoRequest& request, Console console);

}  // namespace quillon
