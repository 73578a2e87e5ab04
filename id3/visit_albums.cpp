#include "id3/visit_albums.h"

#include <utility>
#include <vector>

#include "run/counted.h"
#include "run/excluded_artists.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr int ListStep = 2;

std::vector<FolderEntry> SubFolders(Run& run, Steps& steps, const FolderEntry& folder) {
    Listing<FolderEntry> folders;
    steps.Concerning(folder.path);
    steps.Try(ListStep, [&] { folders = run.files.SubFolders(folder.path); });
    // What could not be looked at stays as it is; the adapter has told of it.
    return std::move(folders.entries);
}

}  // namespace

void VisitAlbums(
    Run& run, Steps& steps, const FolderEntry& root,
    const std::function<void(const std::string& artist, const FolderEntry& album)>& visit) {
    const ExcludedArtists excluded(run);
    int counter = 0;
    for (const FolderEntry& artist : Counted(run, SubFolders(run, steps, root))) {
        run.ShowItem(std::to_string(++counter) + ". Verify ID3 for Artist " + artist.name);
        if (run.AbortRequested) return;
        if (excluded.Contains(artist.name)) continue;
        for (const FolderEntry& album : SubFolders(run, steps, artist))
            visit(artist.name, album);
    }
}

}  // namespace quillon
