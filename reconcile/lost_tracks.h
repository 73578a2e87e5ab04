#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "reconcile/moved_music.h"

namespace quillon {

/// A track whose file is not where it was.
struct LostTrack {
    TrackRow* row = nullptr;
    AlbumRow* album = nullptr;
    bool isDisplaced = false;  ///< its file is there, and holds another song
};

/// The tracks that the walk has not found and whose files are gone, and those whose files hold
/// other songs now. What is not seen is not gone.
std::vector<LostTrack> FindLostTracks(Walk& walk, const std::vector<HeldAlbum>& held,
                                      const std::unordered_set<const TrackRow*>& claimed,
                                      const std::vector<std::string>& absent);

}  // namespace quillon
