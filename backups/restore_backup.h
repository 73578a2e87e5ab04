#pragma once

#include <string>
#include <string_view>

#include "backups/backup_list.h"

namespace quillon {

class Run;

/// The file beside the database that is there while a backup is being put back.
std::string RestoreMarkPath(std::string_view database);

/// The backup that a restore was putting back when it was cut short; "" where there is none.
/// Throws Failure.
std::string UnfinishedRestore(Files& files, std::string_view database);

/// What has become of a restore.
struct Restored {
    bool succeeded = false;
    std::string copyOfNow;  ///< the name of the backup of what was there before; "" when not made
};

/// Puts the parts of a backup back in their places, dates included, after a backup of all that is
/// there now. Parts that the backup does not have stay as they are, except for what runs note
/// beside the database, which goes with it. What fails is logged. Cut short at any moment it has
/// lost nothing: no run starts then, and the same restore again completes it. The database must not
/// be open.
Restored RestoreBackup(Run& run, const BackupMoment& backup);

}  // namespace quillon
