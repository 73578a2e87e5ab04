#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/portable/file_handle.h"

/// Files and folders that are not finished yet. They have names of their own, which no listing
/// shows, and are locked for as long as somebody works on them: that tells them from what a killed
/// run has left. Where locks are not to be had, such entries merely stay.
namespace quillon {

struct TemporaryEntry {
    std::string path;   ///< local
    FileHandle handle;  ///< holds the lock
};

/// Makes an empty file, or a folder, with a free temporary name in a folder (local path, with the
/// slash at its end). `shownPath` is the Windows path for failures. Who makes many files at once
/// gives each another `number`, so that they need not be tried for a free name.
TemporaryEntry MakeTemporaryFile(const std::string& folder, std::string_view shownPath,
                                 std::uint32_t rights, unsigned number = 0);
TemporaryEntry MakeTemporaryFolder(const std::string& folder, std::string_view shownPath);

/// The temporary name of that number for an entry of this process.
std::string TemporaryName(unsigned number);

/// Whether a name is one of those.
bool IsTemporaryName(std::string_view name);

/// Removes what killed runs have left in a folder (local path); what a running process still works
/// on stays. The number of entries removed; 0 for a folder that cannot be read.
std::size_t RemoveAbandoned(const std::string& folder);

}  // namespace quillon
