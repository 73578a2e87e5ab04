#pragma once

#include <span>
#include <vector>

#include "platform/database.h"
#include "undo/row_undo.h"

namespace quillon {

/// The steps that would take an album away from tracks that stay. Without their album nobody would
/// find these tracks any more, and the next run would add their files again. Throws Failure.
std::vector<RowUndo::Step*> AlbumsOfTracksThatStay(Connection& connection,
                                                   std::span<RowUndo::Step> steps);

}  // namespace quillon
