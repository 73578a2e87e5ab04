#include "id3/verify_tags.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "id3/album_tags.h"
#include "run/counted.h"
#include "run/excluded_artists.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr int OpenStep = 1, ListStep = 2;

std::vector<FolderEntry> SubFolders(TagWalk& walk, const FolderEntry& folder) {
    std::vector<FolderEntry> folders;
    walk.steps.Concerning(folder.path);
    walk.steps.Try(ListStep, [&] { folders = walk.run.files.SubFolders(folder.path).entries; });
    return folders;
}

void VerifyArtists(TagWalk& walk, const FolderEntry& root) {
    const ExcludedArtists excluded(walk.run);
    int counter = 0;
    for (const FolderEntry& artist : Counted(walk.run, SubFolders(walk, root))) {
        walk.run.ShowItem(std::to_string(++counter) + ". Verify ID3 for Artist " + artist.name);
        if (walk.run.AbortRequested) return;
        if (excluded.Contains(artist.name)) continue;
        for (const FolderEntry& album : SubFolders(walk, artist))
            VerifyAlbumTags(walk, artist.name, album);
    }
}

}  // namespace

void VerifyID3TagsFolder(Run& run, const FolderEntry& root, DateTime updateTime) {
    Steps steps(run, "VerifyID3TagsFolder");
    std::optional<DifferenceRows> differences;
    std::unique_ptr<RecordSet> tracks;
    const bool opened = steps.Try(OpenStep, [&] {
        differences.emplace(*run.connection, updateTime);
        tracks = run.connection->OpenTable("Tracks");
    });
    if (!opened) return;
    TagWalk walk{.run = run, .steps = steps, .differences = *differences, .tracks = *tracks};
    VerifyArtists(walk, root);
}

void VerifyID3Tags(Run& run) {
    Steps steps(run, "VerifyID3Tags:");
    steps.Try(1, [&run] {
        if (!run.files.FolderExists(run.settings.LibraryRoot)) {
            LogError(run, LogSource,
                     "Verify ID3 Tags, No folder at library root " + run.settings.LibraryRoot);
            return;
        }
        const DateTime updateTime = run.clock.Now();
        for (const FolderEntry& folder : run.LibraryFolders) {
            if (run.AbortRequested) return;
            VerifyID3TagsFolder(run, folder, updateTime);
        }
    });
}

}  // namespace quillon
