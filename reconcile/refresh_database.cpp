#include "reconcile/refresh_database.h"

#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"
#include "reconcile/absent_folders.h"
#include "reconcile/folder_walk.h"
#include "reconcile/keep_missing.h"
#include "reconcile/left_out_music.h"
#include "reconcile/missing_music.h"
#include "reconcile/moved_music.h"
#include "reconcile/unlisted.h"
#include "reconcile/walk.h"
#include "reconcile/walked_album.h"
#include "run/library_root.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// Where the root only holds the library folders, or lists of them, the walk does not see its
/// files.
void NoteLooseFiles(Run& run) {
    const Settings& settings = run.settings;
    if (!settings.LibraryDepthOption) return;
    const FolderNames names = run.files.NamesIn(settings.LibraryRoot);
    LeftOutMusic(run.files, run.leftOut).NoteLoose(settings.LibraryRoot, names.files);
}

/// Removes what the walk did not find; false when nothing may be removed.
bool Sweep(Walk& walk, const std::vector<std::string>& absent) {
    Run& run = walk.run;
    if (run.AbortRequested) return false;
    if (walk.moved && !walk.moved->Settle(absent)) return false;
    if (run.AbortRequested) return false;
    KeepRowsBelow(walk, absent);
    MissingMusic missing = FindMissingMusic(walk);
    KeptMusic kept;
    if (walk.waiting) kept = TakeOutWaiting(walk, missing, absent);
    if (run.removals.Braked() || !run.removals.Allow(run, missing.planned)) return false;
    if (walk.waiting && !KeepWaiting(walk, kept)) return false;
    SweepMissingMusic(walk, missing);
    return true;
}

/// Restores all counts and numbers, since playlists name songs by them.
void TakeBackNumbers(Walk& walk, Steps& steps) {
    RunCounts& counts = walk.run.counts;
    counts.albumsChanged -= walk.recounted;
    counts.albumsUnchanged += walk.recounted;
    counts.tracksChanged -= walk.renumbered;
    counts.tracksUnchanged += walk.renumbered;
    steps.Try(3, [&walk] { RestoreAll(walk.library); });
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

    std::optional<Walk> begun;
    if (!steps.Try(1, [&] { begun.emplace(run); })) return;
    Walk& walk = *begun;
    std::vector<std::string> absent;
    const bool absentKnown = steps.Try(2, [&] {
        absent = AbsentLibraryFolders(run);
        HideAlbumsBelow(walk, absent);
    });
    NoteLooseFiles(run);
    RefreshDatabaseFolders(walk);
    run.counts.leftOut = run.leftOut.Total();
    const bool isSwept = absentKnown && Sweep(walk, absent);
    if (!isSwept) TakeBackNumbers(walk, steps);
    const bool isSaved = steps.Try(3, [&] { walk.library.Save(); });
    if (walk.waiting && isSwept && isSaved) ForgetReturned(walk);
    if (walk.moved) walk.moved->Remember();
}

}  // namespace quillon
