#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace quillon {

class Connection;
class Run;

/// Between marking and the sweeps of a reconciliation the database holds zeros in place of album
/// track counts and track numbers. The mark snapshot keeps what stood there, in a small file beside
/// the database ("<database>.marks"), for as long as that state lasts, so that an abort, an
/// unreadable folder, a missing root or a killed run costs nothing.

/// A folder (or a single file) whose content could not be visited, with the owned albums that it
/// stands for.
struct UnlistedFolder {
    std::string path;    ///< Windows path, with or without a trailing backslash
    std::string artist;  ///< artist folder's name; "" when the whole root could not be listed
    std::string album;   ///< album folder's name; "" when the whole artist could not be listed
};

/// Writes the snapshot of all owned albums and tracks, durably. Nothing may be marked when this
/// fails (it throws). A snapshot that an earlier run left is restored first: a snapshot of marks
/// would be worth nothing.
void TakeMarkSnapshot(Run& run);

/// Whether a snapshot lies beside the database: this or an earlier run has marked and not swept.
bool MarkSnapshotExists(Run& run);

/// Gives every album and track of the snapshot its count, its number and its album back, makes that
/// durable and removes the snapshot. Playlists name tracks by album and number, so both return even
/// where a walk that was cut short had changed them. Rows that are not in the snapshot stay; their
/// numbers yield where they would now be taken twice within an album. Rows that the snapshot does
/// not fit, in a database that was replaced since, are left alone. A damaged snapshot is logged and
/// removed. Does nothing when there is none.
void RestoreMarks(Run& run);

/// Gives back the counts and numbers of what is still marked below these folders, so that the
/// sweeps leave it alone; what was 0 before gets a free number. The snapshot stays. All folders of
/// a run come at once: what an album lacks is added to the count that the walk gave it. Returns how
/// many tracks that concerned below each of them; of folders inside each other the inner one
/// counts.
std::vector<std::size_t> RestoreMarksBelow(Run& run, const std::vector<UnlistedFolder>& folders);

/// AlbumKey of the owned albums that have tracks below these folders. Throws Failure.
std::unordered_set<std::string> AlbumsBelow(Connection& connection,
                                            const std::vector<std::string>& folders);

/// The marked state is over: makes the database durable, then removes the snapshot.
void DiscardMarkSnapshot(Run& run);

/// The snapshot's path for a database file: "<database>.marks".
std::string MarkSnapshotPath(std::string_view database);

}  // namespace quillon
