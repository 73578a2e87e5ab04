#pragma once

#include <string>

#include "app/console.h"
#include "app/requests.h"
#include "backups/backup_list.h"

namespace quillon {

/// `quillon backups`: lists what runs have copied before they changed anything; the exit status.
int ListBackups(const BackupsRequest& request, Console console);

/// How long ago a backup was made: "5 minutes", "3 days".
std::string AgeText(DateTime made, DateTime now);

/// What people call a part of a backup.
std::string NameOfPart(BackupPart part);

}  // namespace quillon
