#pragma once

#include <string>

namespace quillon {

class Run;

/// Why there are no library folders to walk, for a log line: the root is not there, or it is and
/// holds no folder to begin with. Throws Failure when that cannot be determined.
std::string WhyNoLibraryFolders(Run& run);

}  // namespace quillon
