#pragma once

#include <string>

namespace quillon {

/// Renames a local file, but never onto something else; the system's error number, 0 when it is
/// done, EXDEV between two file systems.
int RenameToFreeName(const std::string& from, const std::string& to);

}  // namespace quillon
