#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "run/removals.h"

namespace quillon {

struct Walk;

/// The owned tracks and albums that a walk did not find.
struct MissingMusic {
    struct Track {
        std::string soundFile;
        std::int64_t album = 0;  ///< row ID
    };
    struct Album {
        std::int64_t id = 0;
        std::string name;
        std::size_t tracks = 0;  ///< of the missing ones
    };

    std::vector<Track> tracks;
    std::vector<Album> albums;

    /// The same for the brake, with what makes it doubtful that they are gone: a library folder
    /// without any music, such as the mount point of a drive that is away, or tracks that lie in
    /// none of the library folders.
    PlannedRemoval planned;
};

/// What the sweeps would remove after this walk. Throws Failure.
MissingMusic FindMissingMusic(Walk& walk);

/// Sweeps it, tells of each album, and of each track of an album that stays. Failures are logged.
void SweepMissingMusic(Walk& walk, const MissingMusic& missing);

}  // namespace quillon
