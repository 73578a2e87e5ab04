#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <windows.h>

#include "jet/storage/system_file.h"

namespace jet::storage {

/// The handle as the system's calls take it.
inline HANDLE HandleOf(const Descriptor& file) {
    return reinterpret_cast<HANDLE>(file.Number());
}

/// A path as the system's calls take it whatever its length: from the root on, with the prefix that
/// lifts the old limit of 260 characters.
std::wstring SystemPath(const std::filesystem::path& path);

/// SystemPath's prefix taken away again.
std::filesystem::path WithoutPrefix(std::wstring path);

/// Throws what ThrowSystemError throws for the thread's last error.
[[noreturn]] void ThrowLastError(std::string_view verb, const std::filesystem::path& path);

}  // namespace jet::storage
