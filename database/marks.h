#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class Run;

/// Between marking and the sweeps of a reconciliation the database holds zeros in place of album
/// track counts and track numbers. The mark snapshot keeps what stood there, in a small file beside
/// the database ("<database>.marks"), for as long as that state lasts, so that an abort, an
/// unreadable folder, a missing root or a killed run costs nothing.

/// A folder below which nothing could be visited, with the owned albums that it stands for.
struct UnlistedFolder {
    std::string path;    ///< Windows path, without a trailing backslash
    std::string artist;  ///< artist folder's name; "" when the whole root could not be listed
    std::string album;   ///< album folder's name; "" when the whole artist could not be listed
};

/// Writes the snapshot of all owned albums and tracks, durably. Nothing may be marked when this
/// fails (it throws).
void TakeMarkSnapshot(Run& run);

/// Whether a snapshot lies beside the database: this or an earlier run has marked and not swept.
bool MarkSnapshotExists(Run& run);

/// Gives every album and track of the snapshot its count and number back, makes that durable and
/// removes the snapshot. Does nothing when there is none. Numbers of rows that are not in the
/// snapshot yield where they would now be taken twice within an album.
void RestoreMarks(Run& run);

/// Gives back the counts and numbers of what lies below these folders, so that the sweeps leave it
/// alone. The snapshot stays.
void RestoreMarksBelow(Run& run, const std::vector<UnlistedFolder>& folders);

/// The marked state is over: makes the database durable, then removes the snapshot.
void DiscardMarkSnapshot(Run& run);

}  // namespace quillon
