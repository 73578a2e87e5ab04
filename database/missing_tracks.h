#pragma once

namespace quillon {

class Run;

/// Deletes the owned tracks that the folder walk did not find again: those whose number is still 0.
/// A failure is logged; whether there was none.
bool DeleteMissingTracks(Run& run);

/// Deletes the owned albums whose track count is still 0. Comes after DeleteMissingTracks, so that
/// the tracks of a vanished album are gone before it. Throws Failure.
void DeleteMissingAlbums(Run& run);

}  // namespace quillon
