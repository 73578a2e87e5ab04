#pragma once

namespace quillon {

class Run;
class Steps;

/// What an artist's music goes into the working set as.
enum class ArtistEntries {
    Tracks,  ///< an entry for each track
    Albums,  ///< an entry for each album, except for artists called Various something
};

/// Puts the music of every artist that has a genre in the download table into the working set:
/// artist, genre, album, number (-1 for a whole album) and sort key. An artist whose first track is
/// excluded there is left out. Tracks without a number or without an album's identifier cannot be
/// named in a playlist; they are left out, too, and counted in the log. An artist whose music
/// cannot be read is logged, and does not affect the others; whether there was none. Throws
/// Failure.
bool ReadArtistEntries(Run& run, Steps& steps, ArtistEntries kind);

}  // namespace quillon
