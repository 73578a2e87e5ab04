#include "id3/verify_tags.h"

#include <optional>
#include <string>
#include <utility>

#include "id3/album_plan.h"
#include "id3/album_tags.h"
#include "id3/same_sound.h"
#include "run/counted.h"
#include "run/excluded_artists.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"
#include "tags/known_tags.h"

namespace quillon {
namespace {

enum class VerifyStep { AllFolders = 1, KeepTags = 2, FinishDifferences = 3 };

std::vector<FolderEntry> SubFolders(Run& run, Steps& steps, const FolderEntry& folder) {
    Listing<FolderEntry> folders;
    steps.Concerning(folder.path);
    steps.Try(TagStep::ListFolders, [&] { folders = run.files.SubFolders(folder.path); });
    // What could not be looked at stays as it is; the adapter has told of it.
    return std::move(folders.entries);
}

/// Goes through the album folders below one folder of the library in the tree layout, artist by
/// artist, which it shows and counts; stops at the next artist after an abort. Artists of the
/// exclude list are left out. Folders that cannot be listed are logged through `steps`.
template <typename Visit>
void VisitAlbums(Run& run, Steps& steps, const FolderEntry& root, const Visit& visit) {
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

/// The path that the file has now whose duplicate another one is.
std::string PathOfTwin(const AlbumPlan& plan, const PlannedFile& file) {
    return plan.PathOf(file.twin ? plan.files[*file.twin].name : file.newName);
}

}  // namespace

void VerifyID3TagsFolder(Run& run, const FolderEntry& root, DifferenceRows& differences,
                         std::vector<AlbumRest>& rests) {
    Steps steps(run, "VerifyID3TagsFolder");
    const bool opened = steps.Try(TagStep::Open, [&] {
        differences.Open();
        run.TheLibrary();
    });
    if (!opened) return;
    TagWalk walk{.run = run, .steps = steps, .differences = differences, .rests = rests};
    VisitAlbums(run, steps, root, [&walk](const std::string& artist, const FolderEntry& album) {
        VerifyAlbumTags(walk, artist, album);
    });
}

void VerifyID3Tags(Run& run) {
    Steps steps(run, "VerifyID3Tags:");
    DifferenceRows differences(*run.connection, run.clock.Now());
    steps.Try(VerifyStep::AllFolders, [&] {
        if (!run.files.FolderExists(run.settings.LibraryRoot)) {
            LogError(run, LogSource,
                     "Verify ID3 Tags, No folder at library root " + run.settings.LibraryRoot);
            return;
        }
        std::vector<AlbumRest> rests;
        SharesBySize shares(run, run.LibraryFolders.size());
        for (const FolderEntry& folder : run.LibraryFolders) {
            if (run.AbortRequested) return;
            const Share share = shares.Next(1);
            VerifyID3TagsFolder(run, folder, differences, rests);
        }
        if (!run.AbortRequested) RemoveDuplicateFiles(run, std::move(rests));
    });
    // What was found so far counts where the comparison did not come to its end.
    steps.Try(VerifyStep::FinishDifferences, [&] { differences.Finish(); });
    if (run.knownTags) steps.Try(VerifyStep::KeepTags, [&run] { run.knownTags->Save(); });
}

TagChanges CountTagChanges(Run& run) {
    Steps steps(run, "VerifyID3TagsFolder");
    const bool onlyIdentical = OnlyIdenticalAreRemoved(run.host);
    TagChanges changes;
    const auto goes = [&](const AlbumPlan& plan, const PlannedFile& file) {
        const std::string path = plan.PathOf(file.name);
        bool mayGo = false;
        steps.Concerning(path);
        steps.Try(TagStep::NameByTitle, [&] {
            const std::string twin = PathOfTwin(plan, file);
            mayGo = !run.files.IsSameFile(path, twin) &&
                    (!onlyIdentical || HaveSameSound(run.files, path, twin));
        });
        return mayGo;
    };
    for (const FolderEntry& root : run.LibraryFolders) {
        VisitAlbums(run, steps, root, [&](const std::string& artist, const FolderEntry& album) {
            for (const AlbumPlan& plan : PlanAlbum(run, steps, artist, album)) {
                for (const PlannedFile& file : plan.files) {
                    if (file.fate == Fate::IsRenamed) ++changes.renames;
                    if (file.fate == Fate::IsDuplicate && goes(plan, file)) ++changes.removals;
                }
            }
        });
    }
    return changes;
}

}  // namespace quillon
