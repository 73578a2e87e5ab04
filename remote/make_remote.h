#pragma once

namespace quillon {

class Run;

/// Re-points every stored path of a cover, a sound file or a playlist to the drive (or network
/// share) of the folder that the settings name for it. Steps whose folder has no drive are passed
/// over; Abort is noticed between steps. A failure is logged and ends the procedure; what was
/// written stays.
void MakeRemote(Run& run);

}  // namespace quillon
