#pragma once

namespace quillon {

class Run;

/// Brings the owned albums and tracks of the database into line with the sound files under the
/// library folders: finds or makes a row for each, clears its mark, and deletes what stays marked.
///
/// Rows of folders that could not be looked into are left as they were. A missing library root or
/// an abort ends the procedure before the deletions; the marks are then still set and the mark
/// snapshot is still there.
void RefreshDatabase(Run& run);

}  // namespace quillon
