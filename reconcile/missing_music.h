#pragma once

#include <vector>

#include "run/removals.h"

namespace quillon {

class Run;

/// The owned tracks that the walk did not find, as the sweep would remove them, and what makes it
/// doubtful that they are gone: a library folder without any music, such as the mount point of a
/// drive that is away, or tracks that lie in none of the library folders. `hasMusic` goes with the
/// run's library folders. Throws Failure.
PlannedRemoval MissingTracks(Run& run, const std::vector<bool>& hasMusic);

}  // namespace quillon
