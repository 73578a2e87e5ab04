#pragma once

#include <string>
#include <vector>

namespace quillon {

class Run;

/// Library folders that a `.txt` file in the library root names and that are not there, such as
/// those of a drive that is not mounted. Lines without a drive are no folders. Throws Failure.
std::vector<std::string> AbsentLibraryFolders(Run& run);

/// Keeps the rows below absent library folders from the sweeps; one log line for each folder that
/// has any. Throws Failure.
void KeepRowsOfAbsentFolders(Run& run);

}  // namespace quillon
