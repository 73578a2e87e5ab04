#pragma once

namespace quillon {

class Run;

/// Makes the genre and artist playlists that the settings ask for and records them in the table
/// `Playlists`. Uses the run's working set, which must be empty. A list that is there as it is to
/// be is not written. A failure is logged and affects only the list or artist it is about. Lists
/// that earlier runs have made and this one had no use for are deleted at the end.
void CreateNewPlaylists(Run& run);

}  // namespace quillon
