#pragma once

#include <string>
#include <string_view>

#include "platform/date_time.h"

namespace quillon {

class Run;

/// The present time as it stands in the names of backups, e.g. "11152026_53855_AM".
std::string BackupStamp(DateTime time);

/// Copies a file to a dated name beside it. Nothing happens when there is no such file; a copy
/// that fails is logged and the run goes on without it.
void TimeStampBackup(Run& run, std::string_view file);

/// Copies what is in a folder into a dated folder beside it. `folder` ends in a backslash: its
/// last character is taken for one. Nothing happens when there is no such folder; failures are
/// logged and the run goes on.
void TimeStampFolderBackup(Run& run, std::string_view folder);

}  // namespace quillon
