#pragma once

#include <vector>

#include "reconcile/known_sounds.h"
#include "reconcile/lost_tracks.h"
#include "reconcile/moved_music.h"

namespace quillon {

/// Gives lost tracks the files of albums held back that hold their songs, and albums whose tracks
/// have gone together their new names. Each decision is logged. False when nothing was done because
/// the playlists could not be secured.
bool FollowLostTracks(Walk& walk, KnownSounds& sounds, std::vector<HeldAlbum>& held,
                      const std::vector<LostTrack>& lost);

}  // namespace quillon
