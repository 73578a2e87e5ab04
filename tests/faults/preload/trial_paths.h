#pragma once

#include <string>

namespace quillon::faults {

/// The absolute path that a call means by a path and, for a relative one, the folder open as
/// `folder` (AT_FDCWD: the current one). "" unless it lies in the trial's folder. Links are not
/// followed. Keeps errno, as the other two do.
std::string PathAt(int folder, const char* path);

/// The same with the current folder.
std::string PathOf(const char* path);

/// The path that a descriptor was opened by.
std::string PathOf(int descriptor);

/// "FROM -> TO", when one of them lies in the trial's folder.
std::string Between(const std::string& from, const std::string& to);

}  // namespace quillon::faults
