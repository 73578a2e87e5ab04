#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>
#include <vector>

#include "library/library.h"

namespace quillon {

/// A folder (or a single file) whose content could not be visited, with the owned albums that it
/// stands for.
struct UnlistedFolder {
    std::string path;    ///< Windows path, with or without a trailing backslash
    std::string artist;  ///< artist folder's name; "" when the whole root could not be listed
    std::string album;   ///< album folder's name; "" when the whole artist could not be listed
};

/// Restores the counts and numbers of what is still set aside below these folders, so that the
/// sweeps leave it alone; what was 0 before gets a free number. All folders of a run come at once:
/// what an album lacks is added to the count that the walk gave it. Tracks that wait for their
/// files wait on. Returns how many tracks that concerned below each of them; of folders inside each
/// other the inner one counts.
std::vector<std::size_t> KeepBelow(Library& library, const std::vector<UnlistedFolder>& folders);

/// The own tracks below these folders, or for which one stands.
std::unordered_set<const TrackRow*> TracksBelow(Library& library,
                                                const std::vector<UnlistedFolder>& folders);

/// AlbumKey of the albums that have tracks below these folders.
std::unordered_set<std::string> AlbumsBelow(Library& library,
                                            const std::vector<std::string>& folders);

/// Restores the count, number and album that every row had at the beginning, where the walk has
/// changed them, too. Those that the walk has made stay; their numbers yield where they would now
/// be taken twice within an album. Failure: what the database refuses.
void RestoreAll(Library& library);

}  // namespace quillon
