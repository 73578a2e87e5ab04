#include "reconcile/folder_walk.h"

#include <memory>
#include <unordered_set>

#include "database/waiting_music.h"
#include "platform/basic_text.h"
#include "reconcile/moved_music.h"
#include "reconcile/walk.h"

namespace quillon {

Walk::Walk(Run& theRun) : run(theRun), library(theRun.TheLibrary()), sequence(theRun) {
    // Before the marks: a number that the comparison of tags has found for a row is no return yet.
    if (run.movedMusic.KeepDays > 0) waiting = std::make_unique<WaitingMusic>(run);
    library.MarkAll();
    savedAt = run.clock.Now();
    if (run.movedMusic.FollowMovedFiles) moved = std::make_unique<MovedMusic>(*this);
    std::unordered_set<std::string> seen;
    for (const FolderEntry& folder : run.LibraryFolders) {
        if (seen.insert(UpperCase(folder.path)).second) roots.push_back({folder.path});
    }
}

Walk::~Walk() = default;

void RefreshDatabaseFolders(Walk& walk) {
    if (walk.run.settings.FlatStructure) {
        WalkFlat(walk);
    } else {
        WalkTree(walk);
    }
}

}  // namespace quillon
