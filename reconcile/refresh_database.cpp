#include "reconcile/refresh_database.h"

#include <optional>
#include <string>

#include "database/mark_snapshot.h"
#include "database/marks.h"
#include "database/missing_tracks.h"
#include "platform/files.h"
#include "reconcile/absent_folders.h"
#include "reconcile/folder_walk.h"
#include "reconcile/walk.h"
#include "run/library_root.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// The counts and numbers before marking; none when nothing was marked.
MarkSnapshot NumbersBefore(Run& run) {
    if (!MarkSnapshotExists(run)) return {};
    const std::string path = MarkSnapshotPath(run.settings.Nirvis_CDJ_DB);
    return ReadMarkSnapshot(run.files, path).value_or(MarkSnapshot());
}

}  // namespace

void RefreshDatabase(Run& run) {
    Steps steps(run, "RefreshDatabase");
    bool rootExists = false;
    steps.Try(1, [&] { rootExists = run.files.FolderExists(run.settings.LibraryRoot); });
    // A root that appeared only after the start has no folders to walk: sweeping now would delete
    // every row of it.
    if (!rootExists || run.LibraryFolders.empty()) {
        steps.Try(
            1, [&] { LogError(run, LogSource, "RefreshDatabase, " + WhyNoLibraryFolders(run)); });
        return;
    }

    Walk walk(run);
    steps.Try(1, [&] { walk.before = NumbersBefore(run); });
    for (const FolderEntry& folder : run.LibraryFolders)
        RefreshDatabaseFolder(walk, folder);
    if (run.AbortRequested) return;

    const bool othersKept = steps.Try(3, [&] {
        RestoreMarksBelow(run, walk.unlisted);
        KeepRowsOfAbsentFolders(run);
    });
    if (!othersKept) return;
    DeleteMissingTracks(run);
    steps.TryAs("Refresh Database Track=0 Query", 3, [&run] { DeleteMissingAlbums(run); });
    steps.Try(3, [&run] { DiscardMarkSnapshot(run); });
}

}  // namespace quillon
