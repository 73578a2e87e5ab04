#include "reconcile/folder_walk.h"

#include <unordered_set>

#include "platform/basic_text.h"
#include "reconcile/walk.h"

namespace quillon {

Walk::Walk(Run& theRun) : run(theRun), library(theRun.TheLibrary()), sequence(theRun) {
    library.MarkAll();
    savedAt = run.clock.Now();
    std::unordered_set<std::string> seen;
    for (const FolderEntry& folder : run.LibraryFolders) {
        if (seen.insert(UpperCase(folder.path)).second) roots.push_back({folder.path});
    }
}

void RefreshDatabaseFolders(Walk& walk) {
    if (walk.run.settings.FlatStructure) {
        WalkFlat(walk);
    } else {
        WalkTree(walk);
    }
}

}  // namespace quillon
