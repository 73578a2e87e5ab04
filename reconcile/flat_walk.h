#pragma once

namespace quillon {

struct Walk;

/// Walks the flat layout: sound files of all artists side by side, their names beginning with the
/// artist.
void WalkFlat(Walk& walk);

}  // namespace quillon
