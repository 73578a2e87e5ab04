#include "reconcile/refresh_database.h"

#include <optional>
#include <string>

#include "database/mark_snapshot.h"
#include "database/marks.h"
#include "database/missing_tracks.h"
#include "platform/files.h"
#include "reconcile/absent_folders.h"
#include "reconcile/folder_walk.h"
#include "reconcile/missing_music.h"
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
    std::vector<bool> hasMusic;
    for (const FolderEntry& folder : run.LibraryFolders) {
        walk.musicSeen = false;
        RefreshDatabaseFolder(walk, folder);
        hasMusic.push_back(walk.musicSeen);
    }
    if (run.AbortRequested) return;

    const bool othersKept = steps.Try(3, [&] {
        RestoreMarksBelow(run, walk.unlisted);
        KeepRowsOfAbsentFolders(run);
    });
    // What is still marked gets its numbers back, since the snapshot stays.
    if (!othersKept || run.removals.Braked()) return;
    PlannedRemoval missing;
    const bool known = steps.Try(3, [&] { missing = MissingTracks(run, hasMusic); });
    if (!known || !run.removals.Allow(run, missing)) return;
    if (DeleteMissingTracks(run)) {
        for (const std::string& name : missing.names)
            run.removals.Note(Removable::Tracks, name);
    }
    steps.TryAs("Refresh Database Track=0 Query", 3, [&run] { DeleteMissingAlbums(run); });
    steps.Try(3, [&run] { DiscardMarkSnapshot(run); });
}

}  // namespace quillon
