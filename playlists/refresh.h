#pragma once

namespace quillon {

class Run;

/// The second of two steps that keep the playlists true: reads every playlist again, drops entries
/// that resolve no longer or twice, and lets the others follow their songs to their present
/// positions, by the working set of CapturePlaylists. Each repair is logged. A playlist that has
/// not changed is not touched; one that has nothing left is deleted. A failure is logged and ends
/// the step with the file in hand and those behind it as they are.
void RefreshPlaylist(Run& run);

}  // namespace quillon
