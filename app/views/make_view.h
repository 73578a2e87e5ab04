#pragma once

#include <memory>

#include "app/requests.h"
#include "app/views/view.h"

namespace quillon {

/// The view that was asked for; auto takes the terminal screen where there is a terminal, the
/// window where a desktop has started the run, else plain lines. Quiet ones if so wished.
/// CommandError for a view that cannot be shown.
std::unique_ptr<View> MakeView(ViewKind kind, bool quiet);

}  // namespace quillon
