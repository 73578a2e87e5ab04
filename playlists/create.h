#pragma once

namespace quillon {

class Run;

/// Makes the genre and artist playlists that the settings ask for and records them in the table
/// `Playlists`. Uses the run's working set, which must be empty. A failure is logged and ends the
/// step; complete files stay.
void CreateNewPlaylists(Run& run);

}  // namespace quillon
