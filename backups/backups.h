#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/date_time.h"

namespace quillon {

class Run;

/// The present time as it stands in the names of backups, e.g. "11152026_53855_AM".
std::string BackupStamp(DateTime time);

/// What became of a copy. Where it failed, which is logged, a run must not change anything.
struct Backup {
    bool succeeded = false;
    std::string copy;  ///< its path; "" where there was nothing to copy, or where it failed
};

/// Copies a file to a dated name beside it, where no other copy is overwritten. Without such a file
/// there is nothing to copy. `mark` is what the name says of the time, as CopyName() takes it; ""
/// for the present time.
Backup TimeStampBackup(Run& run, std::string_view file, std::string_view mark = {});

/// The same for a folder with all that is in it. `folder` ends in a backslash: its last character
/// is taken for one. A whole drive has no place beside it, so that is a failure, too.
Backup TimeStampFolderBackup(Run& run, std::string_view folder, std::string_view mark = {});

/// Removes copies of a run that is not to begin after all: night after night they would fill a
/// disk.
void TakeBackupsBack(Run& run, const std::vector<std::string>& copies);

}  // namespace quillon
