#pragma once

namespace quillon {

class Run;

/// Adds each song of the library to the download table that is not in it yet. Songs are told apart
/// by artist, album and title. A song whose row cannot be looked up (a name is missing or holds a
/// double quote) or stored is logged and passed over. Does nothing once Abort has been pressed.
void PopulateSpinnerTracks(Run& run);

}  // namespace quillon
