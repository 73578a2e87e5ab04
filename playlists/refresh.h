#pragma once

namespace quillon {

class Run;

/// The second of two steps that keep the playlists true: drops entries that resolve no longer or
/// twice, and lets the others follow their songs to their present positions, by the working set of
/// CapturePlaylists. Each repair is logged. All lists are looked at before one is changed, and
/// nothing is changed where more would be deleted as empty than the run may remove. A list that is
/// right is not touched, nor one that was not captured or has been changed since. Failures are
/// logged and cost the list that they are about; what it meant is kept for the next run.
void RefreshPlaylist(Run& run);

}  // namespace quillon
