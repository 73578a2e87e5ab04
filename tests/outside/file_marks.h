#pragma once

#include <cstdint>
#include <filesystem>

/// What tests set and make of files beside their content.
namespace outside {

/// Whether the rights of files do not concern this process.
bool IsSuperUser();

/// Says when a file was changed last.
void SetModified(const std::filesystem::path& path, std::int64_t seconds,
                 std::int32_t nanoseconds = 0);

/// As chmod does; only on a POSIX system.
void SetRights(const std::filesystem::path& path, unsigned rights);

/// A named pipe; only on a POSIX system.
void MakePipe(const std::filesystem::path& path);

}  // namespace outside
