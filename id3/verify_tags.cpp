#include "id3/verify_tags.h"

#include <optional>
#include <string>
#include <utility>

#include "id3/album_tags.h"
#include "id3/visit_albums.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {

void VerifyID3TagsFolder(Run& run, const FolderEntry& root, DateTime updateTime,
                         std::vector<AlbumRest>& rests) {
    constexpr int OpenStep = 1;
    Steps steps(run, "VerifyID3TagsFolder");
    std::optional<DifferenceRows> differences;
    const bool opened = steps.Try(OpenStep, [&] {
        differences.emplace(*run.connection, updateTime);
        run.TheLibrary();
    });
    if (!opened) return;
    TagWalk walk{.run = run, .steps = steps, .differences = *differences, .rests = rests};
    VisitAlbums(run, steps, root, [&walk](const std::string& artist, const FolderEntry& album) {
        VerifyAlbumTags(walk, artist, album);
    });
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
        std::vector<AlbumRest> rests;
        for (const FolderEntry& folder : run.LibraryFolders) {
            if (run.AbortRequested) return;
            VerifyID3TagsFolder(run, folder, updateTime, rests);
        }
        if (!run.AbortRequested) RemoveDuplicateFiles(run, std::move(rests));
    });
}

}  // namespace quillon
