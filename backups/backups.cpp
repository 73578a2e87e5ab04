#include "backups/backups.h"

#include <algorithm>
#include <cstddef>

#include "backups/backup_names.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class BackupStep { CopyFile = 3, CopyFolder = 5, RemoveCopy = 8 };

constexpr const char* MakeRoom =
    "nothing was changed. A run makes this copy first: free some space, or give this account the "
    "right to read and write there, and run again";
constexpr const char* NameAFolder =
    "nothing was changed. Name a folder on it in the settings, and run again";

/// Copies of one second differ in a number behind the stamp.
std::string FreeCopyName(Run& run, std::string_view original) {
    const std::string stamp = BackupStamp(run.clock.Now());
    std::string name = CopyName(original, stamp);
    for (int number = 2; run.files.FileExists(name) || run.files.FolderExists(name); ++number)
        name = CopyName(original, stamp + "_" + std::to_string(number));
    return name;
}

std::string CopyNameFor(Run& run, std::string_view original, std::string_view mark) {
    return mark.empty() ? FreeCopyName(run, original) : CopyName(original, mark);
}

/// What is missing by itself and listed in its folder may be there again a moment later.
bool IsThere(Run& run, const std::string& folder) {
    if (run.files.FolderExists(folder)) return true;
    const std::size_t slash = folder.rfind('\\');
    if (slash == std::string::npos) return false;
    const FolderNames names = run.files.NamesIn(folder.substr(0, slash));
    const std::string name = folder.substr(slash + 1);
    const bool isListed = std::ranges::any_of(
        names.folders, [&name](const std::string& one) { return EqualIgnoringCase(one, name); });
    if (isListed) throw Failure(FailureNumber::PathFileAccess, folder);
    return false;
}

}  // namespace

std::string BackupStamp(DateTime time) {
    std::string stamp = Replace(DateTimeText(time), ":", "");
    stamp = Replace(stamp, " ", "_");
    stamp = Replace(stamp, "/", "");
    return Replace(stamp, ",", "");
}

Backup TimeStampBackup(Run& run, std::string_view file, std::string_view mark) {
    run.ShowItem("Making Backup for file " + std::string(file));
    Steps steps(run, "TimeStampBackup");
    steps.Concerning(std::string(file));
    steps.Advising(MakeRoom);
    Backup backup;
    backup.succeeded = steps.Try(BackupStep::CopyFile, [&] {
        if (!run.files.FileExists(file)) return;
        const std::string copy = CopyNameFor(run, file, mark);
        run.files.CopyFile(file, copy, false);
        backup.copy = copy;
    });
    return backup;
}

Backup TimeStampFolderBackup(Run& run, std::string_view folder, std::string_view mark) {
    run.ShowItem("Making Backup for Folder " + std::string(folder));
    if (folder.empty()) return {.succeeded = true, .copy = ""};
    const std::string source(folder.substr(0, folder.size() - 1));
    Steps steps(run, "TimeStampFolderBackup");
    steps.Concerning(source);
    steps.Advising(IsDriveRoot(folder) ? NameAFolder : MakeRoom);
    Backup backup;
    backup.succeeded = steps.Try(BackupStep::CopyFolder, [&] {
        if (source.empty() || !IsThere(run, source)) return;
        if (IsDriveRoot(folder)) {
            throw Failure::Described(FailureNumber::InvalidProcedureCall,
                                     std::string(folder) +
                                         " is a whole drive, and the copy that a run makes first "
                                         "cannot lie beside it",
                                     std::string(folder));
        }
        const std::string copy = CopyNameFor(run, source, mark);
        run.files.CopyFolder(source, copy);
        backup.copy = copy;
    });
    return backup;
}

void TakeBackupsBack(Run& run, const std::vector<std::string>& copies) {
    Steps steps(run, "TimeStampBackup");
    for (const std::string& copy : copies) {
        steps.Try(BackupStep::RemoveCopy, [&] {
            if (run.files.FolderExists(copy)) {
                run.files.DeleteFolder(copy);
            } else {
                run.files.Discard(copy);
            }
        });
    }
}

}  // namespace quillon
