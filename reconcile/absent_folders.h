#pragma once

#include <string>
#include <vector>

namespace quillon {

class Run;
struct Walk;

/// Library folders that a `.txt` file in the library root names and that are not there, such as
/// those of a drive that is not mounted. Lines without a drive are no folders. Throws Failure.
std::vector<std::string> AbsentLibraryFolders(Run& run);

/// Keeps the rows below these folders from the sweeps: those that the walk could not visit, which
/// the log has told already, and absent library folders, of which one log line tells for each that
/// has any.
void KeepRowsBelow(Walk& walk, const std::vector<std::string>& absent);

}  // namespace quillon
