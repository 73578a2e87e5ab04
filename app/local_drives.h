#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/portable/drive_table.h"

namespace quillon {

/// The path absolute, without `.`, `..` and a slash at its end. Links are left as they are.
std::filesystem::path AbsolutePath(const std::filesystem::path& path);

/// The wanted drive letter, or the next one that the table does not have yet.
std::string FreeDrive(const DriveTable& drives, char wanted);

/// Has a Windows path stand for this absolute folder, through a new root of the table. False, with
/// the table as it was, when none can: the names behind the root must be the folder's last ones.
bool MapPath(DriveTable& drives, std::string_view windowsPath, const std::filesystem::path& folder);

}  // namespace quillon
