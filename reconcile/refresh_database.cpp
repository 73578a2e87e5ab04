#include "reconcile/refresh_database.h"

#include <optional>
#include <string>
#include <vector>

#include "database/mark_snapshot.h"
#include "database/marks.h"
#include "platform/files.h"
#include "reconcile/absent_folders.h"
#include "reconcile/folder_walk.h"
#include "reconcile/left_out_music.h"
#include "reconcile/missing_music.h"
#include "reconcile/walk.h"
#include "reconcile/walked_album.h"
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

/// Where the root only holds the library folders, or lists of them, the walk does not see its
/// files.
void NoteLooseFiles(Run& run) {
    const Settings& settings = run.settings;
    if (!settings.LibraryDepthOption) return;
    const FolderNames names = run.files.NamesIn(settings.LibraryRoot);
    LeftOutMusic(run.files, run.leftOut).NoteLoose(settings.LibraryRoot, names.files);
}

/// Removes what the walk did not find and ends the marked state; false when nothing may be removed.
bool Sweep(Walk& walk, const std::vector<std::string>& absent) {
    Run& run = walk.run;
    if (run.AbortRequested) return false;
    Steps steps(run, "RefreshDatabase");
    MissingMusic missing;
    const bool isKnown = steps.Try(3, [&] {
        KeepRowsBelow(run, walk.unlisted, absent);
        missing = FindMissingMusic(walk);
    });
    if (!isKnown || run.removals.Braked() || !run.removals.Allow(run, missing.planned))
        return false;
    SweepMissingMusic(walk, missing);
    steps.Try(3, [&run] { DiscardMarkSnapshot(run); });
    return true;
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
    std::vector<std::string> absent;
    // The numbers that were marked decide about new ones.
    if (!steps.Try(1, [&] { walk.before = NumbersBefore(run); })) return;
    const bool absentKnown = steps.Try(2, [&] {
        absent = AbsentLibraryFolders(run);
        HideAlbumsBelow(walk, absent);
    });
    NoteLooseFiles(run);
    RefreshDatabaseFolders(walk);
    run.counts.leftOut = run.leftOut.Total();
    if (absentKnown && Sweep(walk, absent)) return;
    // What is marked gets its numbers back, since the snapshot stays.
    run.counts.albumsChanged -= walk.recounted;
    run.counts.albumsUnchanged += walk.recounted;
    run.counts.tracksChanged -= walk.renumbered;
    run.counts.tracksUnchanged += walk.renumbered;
}

}  // namespace quillon
