#include "id3/tag_changes.h"

#include <string>

#include "id3/album_plan.h"
#include "id3/duplicate_files.h"
#include "id3/same_sound.h"
#include "id3/visit_albums.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr int SoundStep = 7;

/// The path that the file has now whose duplicate another one is.
std::string PathOfTwin(const AlbumPlan& plan, const PlannedFile& file) {
    return plan.PathOf(file.twin ? plan.files[*file.twin].name : file.newName);
}

}  // namespace

TagChanges CountTagChanges(Run& run) {
    Steps steps(run, "VerifyID3TagsFolder");
    const bool onlyIdentical = OnlyIdenticalAreRemoved(run.host);
    TagChanges changes;
    const auto goes = [&](const AlbumPlan& plan, const PlannedFile& file) {
        const std::string path = plan.PathOf(file.name);
        bool mayGo = false;
        steps.Concerning(path);
        steps.Try(SoundStep, [&] {
            const std::string twin = PathOfTwin(plan, file);
            mayGo = !run.files.IsSameFile(path, twin) &&
                    (!onlyIdentical || HaveSameSound(run.files, path, twin));
        });
        return mayGo;
    };
    for (const FolderEntry& root : run.LibraryFolders) {
        VisitAlbums(run, steps, root, [&](const std::string& artist, const FolderEntry& album) {
            const AlbumPlan plan = PlanAlbum(run, steps, artist, album);
            for (const PlannedFile& file : plan.files) {
                if (file.fate == Fate::IsRenamed) ++changes.renames;
                if (file.fate == Fate::IsDuplicate && goes(plan, file)) ++changes.removals;
            }
        });
    }
    return changes;
}

}  // namespace quillon
