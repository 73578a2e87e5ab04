#include "id3/album_tags.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "id3/album_plan.h"
#include "id3/file_names.h"
#include "id3/tag_comparison.h"
#include "id3/track_of_file.h"
#include "run/log.h"

namespace quillon {
namespace {

class AlbumTags {
  public:
    AlbumTags(TagWalk& walk, AlbumPlan plan)
        : walk_(walk), plan_(std::move(plan)), files_(plan_.files.size()) {}

    void Verify() {
        for (std::size_t i = 0; i < files_.size(); ++i) {
            files_[i].compared.path = plan_.files[i].path;
            walk_.steps.Concerning(files_[i].compared.path);
            if (plan_.files[i].tag.IsThere())
                walk_.steps.Try(TagStep::Compare, [&] { Compare(i); });
        }
        Rename();
        AlbumRest rest;
        for (std::size_t i = 0; i < files_.size(); ++i)
            Finish(i, rest);
        if (!rest.duplicates.empty()) walk_.rests.push_back(std::move(rest));
    }

  private:
    struct File {
        ComparedFile compared;
        TrackRow* row = nullptr;                 ///< as long as no path has changed
        std::optional<std::size_t> rename = {};  ///< its number
        bool isRenamed = false;
    };

    /// Valid as long as the arguments.
    ExpectedTag Expected(std::string_view song, const TrackInfo& info) const {
        const std::string& artist = plan_.artist;
        const std::string& album = plan_.folder.name;
        const std::string_view track = info.track;
        return {.song = song,
                .artist = HasOwnArtist(info) ? std::string_view() : artist,
                .album = album,
                .track = track,
                .genre = walk_.run.GenreDictionary.Find(artist, album, song)};
    }

    /// Whether the track's artist is its own affair: nothing is expected of it then.
    bool HasOwnArtist(const TrackInfo& info) const {
        if (!walk_.run.modern.keepsTrackArtists) return false;
        const bool isKnown = info.row != nullptr && !info.row->artist.IsEmpty();
        return plan_.isOfSeveralArtists || (isKnown && info.row->artist != plan_.artist);
    }

    /// Notes what disagrees. A file that has only brackets for a name of its own will have gone.
    void Compare(std::size_t i) {
        const PlannedFile& file = plan_.files[i];
        ComparedFile& compared = files_[i].compared;
        const bool isRenamed = file.fate == Fate::IsRenamed;
        const TrackInfo info = GetID3TrackInfo(
            walk_.run, compared.path, isRenamed ? plan_.PathOf(file.newName) : std::string());
        const TagComparison tag = CompareTag(file.tag, Expected(file.title, info), info.seconds);
        files_[i].row = info.row;
        compared.track = tag.track;
        compared.seconds = tag.seconds;
        compared.newTitle = file.tagTitle;
        if (file.byBrackets) return;
        for (const TagDifference& difference : tag.differences) {
            walk_.steps.Try(TagStep::NoteDifference, [&] {
                walk_.differences.Add(plan_.artist, plan_.folder.name, file.title, difference);
            });
        }
    }

    static Renames::RowTitle TitleOf(const PlannedFile& file) {
        const bool isRound = RoundBrackets(file.name) == file.name;
        return isRound ? Renames::RowTitle::Keep : Renames::RowTitle::RoundBrackets;
    }

    void Rename() {
        Renames renames(walk_.run, walk_.steps);
        for (std::size_t i = 0; i < files_.size(); ++i) {
            const PlannedFile& file = plan_.files[i];
            if (file.fate != Fate::IsRenamed || file.waits) continue;
            files_[i].rename =
                renames.Add(files_[i].compared.path, plan_.PathOf(file.newName), TitleOf(file));
        }
        if (std::ranges::none_of(files_, [](const File& file) { return file.rename.has_value(); }))
            return;
        renames.Commit();
        for (File& file : files_) {
            file.row = nullptr;
            if (!file.rename) continue;
            file.compared.path = renames.PathOf(*file.rename);
            file.isRenamed = renames.IsDone(*file.rename);
        }
    }

    /// Whether the file that another is a duplicate of has its name.
    bool IsTwinThere(const PlannedFile& file) const {
        return !file.twin || !files_[*file.twin].rename || files_[*file.twin].isRenamed;
    }

    /// Brings the row of a file in line, or leaves the file to the end: the row of a duplicate must
    /// not be marked as found.
    void Finish(std::size_t i, AlbumRest& rest) {
        const PlannedFile& file = plan_.files[i];
        ComparedFile& compared = files_[i].compared;
        if (file.fate == Fate::IsDuplicate && IsTwinThere(file)) {
            compared.newTitle.reset();
            const bool isPlain = file.plainName == file.name || file.byBrackets;
            rest.duplicates.push_back({.file = std::move(compared),
                                       .twin = plan_.PathOf(file.newName),
                                       .pathIfKept = isPlain ? "" : plan_.PathOf(file.plainName),
                                       .byBrackets = file.byBrackets});
            return;
        }
        if (file.fate == Fate::IsRenamed && file.waits) {
            rest.renames.push_back({.to = plan_.PathOf(file.newName),
                                    .title = TitleOf(file),
                                    .file = std::move(compared)});
            return;
        }
        TellIfBlocked(file);
        if (!files_[i].isRenamed) compared.newTitle.reset();
        // Of a file without a tag the sound may tell the length.
        if (!file.tag.IsThere()) compared.seconds = file.tag.seconds;
        const bool tells = file.tag.IsThere() || !compared.seconds.empty();
        if (tells) UpdateForID3Info(walk_.run, compared, files_[i].row);
    }

    void TellIfBlocked(const PlannedFile& file) {
        const bool stays = file.isBlocked && file.fate == Fate::Stays && !file.newName.empty();
        if (!stays) return;
        WriteLog(
            walk_.run, LogSource,
            plan_.PathOf(file.name) + " keeps its name, since " + file.newName + " is not free");
    }

    TagWalk& walk_;
    const AlbumPlan plan_;
    std::vector<File> files_;  ///< of the plan
};

}  // namespace

void VerifyAlbumTags(TagWalk& walk, const std::string& artist, const FolderEntry& folder) {
    for (AlbumPlan& plan : PlanAlbum(walk.run, walk.steps, artist, folder))
        AlbumTags(walk, std::move(plan)).Verify();
}

}  // namespace quillon
