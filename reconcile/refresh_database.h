#pragma once

namespace quillon {

class Run;

/// Brings the owned albums and tracks of the database into line with the sound files under the
/// library folders: finds or makes a row for each, and deletes the rows that it has met no file
/// for.
///
/// Rows of folders that could not be looked into are left as they were. A missing library root or
/// an abort ends the procedure before the deletions; then all rows have the counts and numbers that
/// they had.
void RefreshDatabase(Run& run);

}  // namespace quillon
