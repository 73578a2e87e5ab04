#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// UTF-16 of a UTF-8 text, and back. Halves of a surrogate pair that stand alone, which file names
/// may hold, become three bytes that are no valid UTF-8, and these become such halves again; any
/// other byte that is no UTF-8 becomes U+FFFD.
std::wstring WideText(std::string_view text);
std::string NarrowText(std::wstring_view text);

/// A local path as the system takes it: with backslashes, whole, and marked so that neither its
/// length nor names of devices in it mean anything.
std::wstring WidePath(std::string_view localPath);

/// The local path of what the system calls a file.
std::string LocalPathOf(std::wstring_view systemPath);

}  // namespace quillon
