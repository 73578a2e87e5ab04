#include "reconcile/folder_walk.h"

#include <unordered_set>

#include "platform/basic_text.h"
#include "reconcile/flat_walk.h"
#include "reconcile/tree_walk.h"
#include "reconcile/walk.h"
#include "run/steps.h"

namespace quillon {

Walk::Walk(Run& theRun) : run(theRun), sequence(theRun) {
    std::unordered_set<std::string> seen;
    for (const FolderEntry& folder : run.LibraryFolders) {
        if (seen.insert(UpperCase(folder.path)).second) roots.push_back({folder.path});
    }
}

void RefreshDatabaseFolders(Walk& walk) {
    Steps steps(walk.run, "RefreshDatabaseFolder");
    const bool opened = steps.Try(1, [&walk] {
        walk.albums = walk.run.connection->OpenTable("Albums");
        walk.tracks = walk.run.connection->OpenTable("Tracks");
    });
    if (!opened) {
        for (const WalkedRoot& root : walk.roots)
            walk.unlisted.push_back({root.path, "", ""});
    } else if (walk.run.settings.FlatStructure) {
        WalkFlat(walk);
    } else {
        WalkTree(walk);
    }
}

}  // namespace quillon
