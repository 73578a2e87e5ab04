#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "library/rows.h"
#include "run/removals.h"

namespace quillon {

struct Walk;

/// The owned tracks and albums that a walk did not find.
struct MissingMusic {
    struct Track {
        TrackRow* row = nullptr;
        const AlbumRow* album = nullptr;  ///< null: none has its identifier
    };

    std::vector<Track> tracks;
    std::vector<AlbumRow*> albums;

    /// The same for the brake, with what makes it doubtful that they are gone: a library folder
    /// without any music, such as the mount point of a drive that is away, or tracks that lie in
    /// none of the library folders.
    PlannedRemoval planned;
};

/// An album as the log names it: "Alder\First Light".
std::string NameOf(const AlbumRow& album);

/// "1 track", "2 tracks".
std::string TracksText(std::size_t count);

/// Tracks, of so many in all, as the brake wants to know of them.
PlannedRemoval PlanRemoval(const Walk& walk, const std::vector<MissingMusic::Track>& tracks,
                           std::size_t owned);

/// What the sweeps would remove after this walk.
MissingMusic FindMissingMusic(Walk& walk);

/// Removes the tracks among it. A failure is logged; whether there was none.
bool DeleteMissingTracks(Walk& walk, const MissingMusic& missing);

/// Sweeps it, the tracks of a vanished album before the album; tells of each album, and of each
/// track of an album that stays. Failures are logged.
void SweepMissingMusic(Walk& walk, const MissingMusic& missing);

}  // namespace quillon
