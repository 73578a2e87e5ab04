#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/date_time.h"

namespace quillon {

class Host;
class Run;
struct BackedUp;

/// Where [Backups] stands in the host's settings file, and its key.
constexpr std::string_view BackupsSection = "Backups";
constexpr std::string_view BackupsKeepKey = "Keep";

/// [Backups] Keep: how many backups stay, whatever their age.
struct BackupKeeping {
    static constexpr std::size_t Usual = 30;  ///< what a new host folder gets

    /// None: each run makes its copies, and all of them stay for good.
    std::optional<std::size_t> newest;
    std::string text;  ///< as written; "" where the key is absent
};

/// What is no whole number of 1 or more is as if it were absent.
BackupKeeping ReadBackupKeeping(Host& host);

/// Which of the backups of these times stay: as many of the newest as that, and of each month the
/// last one of the others that is not older than a year.
std::vector<bool> BackupsThatStay(std::span<const DateTime> made, std::size_t newest, DateTime now);

/// Copies what a mode backs up, except what has the same content as its last copy; a note says
/// which copies those are. False when something could not be copied: that is logged, and none is
/// left.
bool BackUpWhatChanged(Run& run, std::span<const BackedUp> backedUp);

/// Copies all that there is of what backups are made of; the mark of the copies, "" when something
/// could not be copied: that is logged, and none is left. Throws Failure.
std::string BackUpAll(Run& run);

/// Removes the backups that need not stay. Those that others refer to stay with them.
void RemoveOldBackups(Run& run, std::size_t newest);

}  // namespace quillon
