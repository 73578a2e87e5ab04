#pragma once

namespace quillon {

class Run;

/// The first of two steps that keep the playlists true while the library changes. Deletes the files
/// of generated playlists that are to be made anew in this run, then puts every entry of all other
/// playlists into the working set, tied to its song's row, and into the playlist snapshot. Failures
/// are logged; a playlist that cannot be read is noted in the working set as unread.
void CapturePlaylists(Run& run);

}  // namespace quillon
