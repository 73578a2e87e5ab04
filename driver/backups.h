#pragma once

#include <string>
#include <string_view>

#include "platform/date_time.h"

namespace quillon {

class Run;

/// The present time as it stands in the names of backups, e.g. "11152026_53855_AM".
std::string BackupStamp(DateTime time);

/// Copies a file to a dated name beside it, where no other copy is overwritten. True also when
/// there is no such file; false for a copy that failed, which is logged: a run must not change
/// anything then.
bool TimeStampBackup(Run& run, std::string_view file);

/// The same for a folder with all that is in it. `folder` ends in a backslash: its last character
/// is taken for one. A whole drive has no place beside it, so that is a failure, too.
bool TimeStampFolderBackup(Run& run, std::string_view folder);

}  // namespace quillon
