#include "reconcile/absent_folders.h"

#include <algorithm>

#include "platform/files.h"
#include "reconcile/unlisted.h"
#include "reconcile/walk.h"
#include "run/library_lists.h"
#include "run/log.h"
#include "run/paths.h"
#include "run/run.h"

namespace quillon {

std::vector<std::string> AbsentLibraryFolders(Run& run) {
    std::vector<std::string> absent;
    if (!run.settings.LibraryDepthOption) return absent;
    // A folder in the root that cannot be looked at may be a library folder.
    absent = run.files.SubFolders(run.settings.LibraryRoot).unseen;
    for (std::string& line : ListedLibraryFolders(run.files, run.settings.LibraryRoot)) {
        const std::string drive = GetDrive(AddBackslash(line));
        const bool isPath = drive.ends_with(':') || drive.starts_with("\\\\");
        if (isPath && !FolderMayExist(run.files, line) &&
            std::find(absent.begin(), absent.end(), line) == absent.end()) {
            absent.push_back(std::move(line));
        }
    }
    return absent;
}

void KeepRowsBelow(Walk& walk, const std::vector<std::string>& absent) {
    Run& run = walk.run;
    std::vector<UnlistedFolder> unlisted = walk.unlisted;
    const std::size_t visited = unlisted.size();
    for (const std::string& folder : absent)
        unlisted.push_back({folder, "", ""});
    const std::vector<std::size_t> kept = KeepBelow(walk.library, unlisted);
    for (std::size_t i = visited; i < unlisted.size(); ++i) {
        if (kept[i] == 0) continue;
        LogError(run, LogSource,
                 "RefreshDatabase, No folder at library folder " + unlisted[i].path + ", " +
                     std::to_string(kept[i]) +
                     (kept[i] == 1 ? " track below it is kept" : " tracks below it are kept"));
    }
}

}  // namespace quillon
