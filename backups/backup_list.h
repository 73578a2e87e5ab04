#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "backups/backed_up.h"
#include "platform/date_time.h"
#include "platform/files.h"
#include "run/settings.h"

namespace quillon {

/// What backups are made of.
enum class BackupPart {
    Database,
    Snapshot,  ///< what an interrupted run has left beside the database
    Missing,   ///< since when music is missing, and its places in playlists; likewise beside it
    PlayListPath,
    PlayListPath2,
};

/// A file or folder that is copied; the path has no backslash at its end.
struct BackupOriginal {
    BackupPart part = BackupPart::Database;
    std::string path;
    bool isFolder = false;
};

/// What runs note beside a database, be it there or not: neither is complete without the other.
std::vector<BackupOriginal> NotesBeside(const std::string& database);
inline bool IsNote(BackupPart part) {
    return part == BackupPart::Snapshot || part == BackupPart::Missing;
}

/// Those of what a mode backs up that the settings name, in the order in which they are copied.
std::vector<BackupOriginal> BackupOriginals(const Settings& settings,
                                            std::span<const BackedUp> backedUp);
/// All that the settings name.
std::vector<BackupOriginal> BackupOriginals(const Settings& settings);

/// One dated copy.
struct BackupCopy {
    BackupOriginal original;
    std::string path;
    std::string mark;  ///< of its name, e.g. "11152026_53855_AM"
    DateTime made;
    /// The later one of the times that its name can mean, where nothing tells which it is; else
    /// the same.
    DateTime latest;
    unsigned number = 1;  ///< of the copies of that second
};

/// What one run has copied before it changed anything.
struct BackupMoment {
    std::string name;  ///< the mark of its copies, by which people name it
    DateTime made, latest;
    std::vector<BackupCopy> copies;
    /// Copies of earlier moments that had the content of this one, so that none was made.
    std::vector<BackupCopy> shared;
    std::string note;     ///< the file that names them; "" where all were copied
    bool isWhole = true;  ///< false: that file cannot be read, or names a copy that is gone

    /// The copy that has the content of a part; null where this backup has none.
    const BackupCopy* CopyOf(BackupPart part) const;
};

/// The newest copy of each part: what the next one is compared with.
std::vector<BackupCopy> NewestCopies(Files& files, std::span<const BackupOriginal> originals,
                                     DateTime now);

/// All backups there are, the newest first. What has not exactly the name and kind of a dated copy
/// is nobody's business here. Throws Failure.
std::vector<BackupMoment> FindBackups(Files& files, const Settings& settings, DateTime now);

/// Writes down which earlier copies belong to the moment of this mark, too. The note is a dated
/// file beside the database. Its path; throws Failure.
std::string WriteBackupNote(Files& files, const Settings& settings, std::string_view mark,
                            std::span<const BackupCopy> shared);

/// Whether nothing has the name yet that a backup with this mark would take.
bool IsFreeMark(Files& files, const Settings& settings, std::string_view mark);

/// Bytes in a file, or in all files of a folder. Throws Failure.
std::uint64_t SizeOfBackup(Files& files, const BackupCopy& copy);

}  // namespace quillon
