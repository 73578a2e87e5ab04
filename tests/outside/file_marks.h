#pragma once

#include <cstdint>
#include <filesystem>

/// What tests set and make of files beside their content.
namespace outside {

/// Whether files are those of a POSIX system: with rights for owner, group and others, links that
/// anybody may make, pipes, and any byte in names, letter case included.
bool HasPosixFiles();

/// Whether the rights of files do not concern this process.
bool IsSuperUser();

/// Says when a file was changed last.
void SetModified(const std::filesystem::path& path, std::int64_t seconds,
                 std::int32_t nanoseconds = 0);

/// As chmod does; only where HasPosixFiles().
void SetRights(const std::filesystem::path& path, unsigned rights);

/// A named pipe; only where HasPosixFiles().
void MakePipe(const std::filesystem::path& path);

}  // namespace outside

/// At the beginning of a test of what only such files have.
#define QUILLON_NEEDS_POSIX_FILES() \
    if (!outside::HasPosixFiles()) GTEST_SKIP() << "of POSIX files alone"
