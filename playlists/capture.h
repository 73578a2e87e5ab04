#pragma once

namespace quillon {

class Run;

/// Replaces the run's playlist working set by an empty one.
void BuildORsRecordset(Run& run);

/// The first of two steps that keep the playlists true while the library changes: puts every entry
/// of all playlists into the working set, tied to its song's row, and into the playlist snapshot.
/// Generated playlists that will be generated again in this run are left out. Failures are logged;
/// a playlist that cannot be read is noted in the working set as unread.
void CapturePlaylists(Run& run);

}  // namespace quillon
