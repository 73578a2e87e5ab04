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
#include "run/counted.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"
#include "tags/known_tags.h"

namespace quillon {
namespace {

// How much of the whole has been done where moved music is followed: the walk, then a search for
// what was moved, in the end new sounds are listened to.
constexpr double EndOfWalk = 0.5, EndOfSearch = 0.7;

/// Why there are no library folders to walk, for a log line: the root is not there, or it is and
/// holds no folder to begin with. Throws Failure when that cannot be determined.
std::string WhyNoLibraryFolders(Run& run) {
    const std::string& root = run.settings.LibraryRoot;
    const bool isThere = run.files.FolderExists(root);
    // One that holds folders was not there when the run began.
    if (!run.settings.LibraryDepthOption || !isThere || !run.files.SubFolders(root).empty())
        return "No folder at library root " + root;
    return "Library root " + root +
           " holds neither a folder nor a .txt file that names one, and LibraryDepthOption=1 looks "
           "for the music in those. Set it to 0, or name the folder above";
}

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
    if (walk.moved) {
        const Share share(run, EndOfWalk, EndOfSearch);
        if (!walk.moved->Settle(absent)) return false;
    }
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
    steps.Try(RefreshStep::ChangeRows, [&walk] { RestoreAll(walk.library); });
}

}  // namespace

void RefreshDatabase(Run& run) {
    Steps steps(run, "RefreshDatabase");
    bool rootExists = false;
    steps.Try(RefreshStep::Begin,
              [&] { rootExists = run.files.FolderExists(run.settings.LibraryRoot); });
    // A root that appeared only after the start has no folders to walk: sweeping now would delete
    // every row of it.
    if (!rootExists || run.LibraryFolders.empty()) {
        steps.Try(RefreshStep::Begin, [&] {
            LogError(run, LogSource, "RefreshDatabase, " + WhyNoLibraryFolders(run));
        });
        return;
    }

    std::optional<Walk> begun;
    if (!steps.Try(RefreshStep::Begin, [&] { begun.emplace(run); })) return;
    Walk& walk = *begun;
    std::vector<std::string> absent;
    const bool absentKnown = steps.Try(RefreshStep::FindAbsentFolders, [&] {
        absent = AbsentLibraryFolders(run);
        HideAlbumsBelow(walk, absent);
    });
    NoteLooseFiles(run);
    {
        const Share share(run, 0, walk.moved ? EndOfWalk : 1);
        RefreshDatabaseFolders(walk);
    }
    run.counts.leftOut = run.leftOut.Total();
    const bool isSwept = absentKnown && Sweep(walk, absent);
    if (!isSwept) TakeBackNumbers(walk, steps);
    const bool isSaved = steps.Try(RefreshStep::ChangeRows, [&] { walk.library.Save(); });
    if (walk.waiting && isSwept && isSaved) ForgetReturned(walk);
    if (walk.moved) {
        const Share share(run, EndOfSearch, 1);
        walk.moved->Remember();
    }
    if (run.knownTags && !run.AbortRequested)
        steps.Try(RefreshStep::KeepTags, [&run] { run.knownTags->SaveKept(); });
}

}  // namespace quillon
