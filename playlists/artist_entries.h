#pragma once

#include <cstddef>

namespace quillon {

class Run;

/// What an artist's music goes into the working set as.
enum class ArtistEntries {
    Tracks,  ///< an entry for each track
    Albums,  ///< an entry for each album, except for artists called Various something
};

/// Puts the music of every artist that has a genre in the download table into the working set:
/// artist, genre, album, number (-1 for a whole album) and sort key. An artist whose first track is
/// excluded there is left out. Tracks without a number cannot be named in a playlist; they are left
/// out, too, and counted in the log. Throws Failure.
void ReadArtistEntries(Run& run, ArtistEntries kind);

}  // namespace quillon
