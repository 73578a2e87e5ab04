#include "playlists/obsolete_lists.h"

#include <algorithm>
#include <vector>

#include "platform/basic_text.h"
#include "platform/files.h"
#include "playlists/generated_rows.h"
#include "playlists/pla_line.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// A name without extension and without the three digits of a part.
std::string StemOf(std::string name) {
    constexpr std::size_t PartDigits = 3;
    name.erase(name.size() - std::min(name.size(), PlaExtension.size()));
    const std::string end(Right(name, PartDigits));
    const bool isPart =
        end.size() == PartDigits && end.find_first_not_of("0123456789") == std::string::npos;
    if (isPart) name.erase(name.size() - PartDigits);
    return name;
}

/// Whether a condition holds for a family that has the row's mark and is switched on.
template <typename Condition>
bool OfAnyFamily(const Run& run, const GeneratedRow& row, Condition holds) {
    return (row.byGenre && run.settings.GenrePlaylist && holds(GeneratedBy::Genre)) ||
           (row.byArtist && run.settings.ArtistPlaylist && holds(GeneratedBy::Artist));
}

/// The files of earlier runs for which this one had no use.
class Obsolete {
  public:
    Obsolete(Run& run, const MadeLists& made) : run_(run), made_(made) {}

    void Add(const GeneratedRow& row) {
        const auto isUnfinished = [this](GeneratedBy by) { return !made_.IsComplete(by); };
        if (OfAnyFamily(run_, row, isUnfinished)) return;
        const bool isHere = row.folder == run_.settings.PlayListPath;
        if (isHere && made_.Hold(row.name)) return;
        if (!run_.files.FileExists(row.Path())) return;
        paths.push_back(row.Path());
        const auto hasNoMusic = [this](GeneratedBy by) { return !made_.HasFoundMusic(by); };
        if (OfAnyFamily(run_, row, hasNoMusic)) inDoubt.names.push_back(row.Path());
    }

    std::vector<std::string> paths;
    PlannedRemoval inDoubt{.kind = Removable::Playlists,
                           .names = {},
                           .doubt = "no music was found to make new ones of"};

  private:
    Run& run_;
    const MadeLists& made_;
};

}  // namespace

void MadeLists::Plan(const GeneratedLists& lists) {
    for (const GeneratedList& list : lists.All())
        names_.insert(LowerCase(list.name + std::string(PlaExtension)));
}

void MadeLists::Failed(const GeneratedList& list) {
    failedStems_.insert(LowerCase(list.stem));
}

void MadeLists::Complete(GeneratedBy family) {
    complete_.at(Index(family)) = true;
}

void MadeLists::FoundNoMusic(GeneratedBy family) {
    withoutMusic_.at(Index(family)) = true;
}

bool MadeLists::Hold(std::string_view name) const {
    const std::string file = LowerCase(name);
    return names_.contains(file) || failedStems_.contains(StemOf(file)) ||
           failedStems_.contains(file.substr(0, file.rfind('.')));
}

void DeleteObsoleteLists(Run& run, Steps& steps, const MadeLists& made) {
    if (run.removals.Braked()) return;
    const GeneratedRows rows = ReadGeneratedRows(run);
    Obsolete obsolete(run, made);
    for (const GeneratedRow& row : rows.All())
        steps.Try([&] { obsolete.Add(row); });
    if (!run.removals.Allow(run, obsolete.inDoubt)) return;
    for (const std::string& path : obsolete.paths) {
        steps.Concerning(path);
        steps.Try([&] {
            run.files.DeleteFile(path);
            WriteLog(run, LogSource,
                     "Playlist " + path + " removed because no music belongs in it any more");
            run.removals.Note(Removable::Playlists, path);
            ++run.counts.playlistsRemoved;
        });
    }
    steps.Concerning({});
}

}  // namespace quillon
