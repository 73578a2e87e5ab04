#pragma once

namespace quillon {

class Run;

/// Removes what killed runs have left unfinished in the folders that a run writes into and does not
/// list: beside the database and the playlist folders, where backups lie, and in the host's
/// folders. Folders that are listed are cleared then.
void RemoveUnfinishedFiles(Run& run);

}  // namespace quillon
