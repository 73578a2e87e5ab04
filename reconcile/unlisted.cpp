#include "reconcile/unlisted.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "database/album_key.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

/// Tells which rows stand for something below folders that could not be visited.
class UnlistedRows {
  public:
    explicit UnlistedRows(const std::vector<UnlistedFolder>& folders) {
        for (std::size_t i = 0; i < folders.size(); ++i) {
            const UnlistedFolder& folder = folders[i];
            std::string path = LowerCase(folder.path);
            while (path.ends_with('\\'))
                path.pop_back();
            paths_.try_emplace(std::move(path), i);
            if (folder.artist.empty()) {
                wholeRoot_ = true;
            } else {
                names_.insert(AlbumKey(folder.artist, folder.album));
            }
        }
    }

    /// The position of the folder that holds the track, or is it.
    std::optional<std::size_t> FolderOf(std::string_view soundFile) const {
        std::string path = LowerCase(soundFile);
        while (true) {
            if (const auto found = paths_.find(path); found != paths_.end()) return found->second;
            const std::size_t parent = path.rfind('\\');
            if (parent == std::string::npos) return std::nullopt;
            path.resize(parent);
        }
    }

    bool NameAlbum(const AlbumRow& album) const {
        return names_.contains(AlbumKey(album.artist, "")) ||
               names_.contains(AlbumKey(album.artist, album.title));
    }

    /// A root that cannot be listed does not tell which albums without tracks it held.
    bool HoldWholeRoot() const { return wholeRoot_; }

  private:
    std::unordered_map<std::string, std::size_t> paths_;  ///< in lower case
    std::unordered_set<std::string> names_;
    bool wholeRoot_ = false;
};

using TrackSet = std::unordered_set<const TrackRow*>;

/// Numbers in an album that no two tracks may share: those of `newcomers` yield to the others.
void NumberApart(Library& library, std::string_view cdjid, const TrackSet& newcomers) {
    std::set<std::int32_t> taken;
    std::vector<TrackRow*> unsettled;
    for (TrackRow* const track : library.TracksOf(cdjid)) {
        if (newcomers.contains(track)) {
            unsettled.push_back(track);
        } else {
            taken.insert(track->number.Value());
        }
    }
    std::int32_t lowest = 1;
    for (TrackRow* const track : unsettled) {
        const std::int32_t number = track->number.Value();
        if (number > 0 && taken.insert(number).second) continue;
        while (!taken.insert(lowest).second)
            ++lowest;
        track->number.Set(lowest);
    }
}

/// The tracks and albums that the folders stand for, and their return to what they were.
class Keeping {
  public:
    Keeping(Library& library, const UnlistedRows& unlisted)
        : library_(library), unlisted_(unlisted) {}

    /// Adds how many there are to the count of their folder.
    void KeepTracks(std::vector<std::size_t>& counts) {
        std::map<std::string, TrackSet> unsettled;
        for (TrackRow& track : library_.Tracks()) {
            const AlbumRow* const album = track.isGone ? nullptr : library_.AlbumOf(track);
            if (album == nullptr || !track.isOwn || track.isWaiting ||
                (track.number.Value() != 0 && album->count.Value() != 0))
                continue;
            const std::optional<std::size_t> folder = unlisted_.FolderOf(track.soundFile);
            if (!folder) continue;
            ++counts.at(*folder);
            ++kept_[LowerCase(track.cdjid)];
            // The comparison of tags may have found it another number before the folder came out of
            // reach. Where the walk has been, the album has its count again.
            const bool isKnown = !track.isNew && track.number.Before() != RowNumber(0);
            const std::int32_t present = track.number.Value();
            if (isKnown) track.number.Restore();
            // Where the walk has been, it has handed out numbers to the files that it saw.
            const bool isShared = album->count.Value() != 0;
            if (isShared || (!isKnown && present <= 0)) unsettled[track.cdjid].insert(&track);
        }
        for (const auto& [cdjid, tracks] : unsettled)
            NumberApart(library_, cdjid, tracks);
    }

    void KeepAlbums() {
        for (AlbumRow& album : library_.Albums()) {
            if (album.isGone || !album.isOwn || album.isWaiting) continue;
            const auto kept = kept_.find(LowerCase(album.cdjid));
            if (const std::int32_t seen = album.count.Value(); seen != 0) {
                if (kept != kept_.end()) album.count.Set(seen + kept->second);
                continue;
            }
            const bool isCountKnown = !album.isNew && album.count.Before() != RowNumber(0);
            if (kept == kept_.end() && !unlisted_.NameAlbum(album) &&
                !(unlisted_.HoldWholeRoot() && isCountKnown &&
                  library_.TracksOf(album.cdjid).empty())) {
                continue;
            }
            if (isCountKnown) {
                album.count.Restore();
            } else {
                album.count.Set(kept == kept_.end() ? 1 : kept->second);
            }
        }
    }

  private:
    Library& library_;
    const UnlistedRows& unlisted_;
    std::map<std::string, std::int32_t> kept_;  ///< tracks by CDJID in lower case
};

}  // namespace

std::vector<std::size_t> KeepBelow(Library& library, const std::vector<UnlistedFolder>& folders) {
    std::vector<std::size_t> counts(folders.size());
    if (folders.empty()) return counts;
    const UnlistedRows unlisted(folders);
    Keeping keeping(library, unlisted);
    keeping.KeepTracks(counts);
    keeping.KeepAlbums();
    return counts;
}

std::unordered_set<const TrackRow*> TracksBelow(Library& library,
                                                const std::vector<UnlistedFolder>& folders) {
    std::unordered_set<const TrackRow*> tracks;
    if (folders.empty()) return tracks;
    const UnlistedRows unlisted(folders);
    for (const TrackRow& track : library.Tracks()) {
        if (!track.isGone && track.isOwn && unlisted.FolderOf(track.soundFile))
            tracks.insert(&track);
    }
    return tracks;
}

std::unordered_set<std::string> AlbumsBelow(Library& library,
                                            const std::vector<std::string>& folders) {
    std::unordered_set<std::string> albums;
    if (folders.empty()) return albums;
    std::vector<UnlistedFolder> unlistedFolders;
    unlistedFolders.reserve(folders.size());
    for (const std::string& folder : folders)
        unlistedFolders.push_back({folder, "", ""});
    const UnlistedRows unlisted(unlistedFolders);
    for (const TrackRow& track : library.Tracks()) {
        if (!track.isOwn || !unlisted.FolderOf(track.soundFile)) continue;
        if (const AlbumRow* const album = library.AlbumOf(track))
            albums.insert(AlbumKey(album->artist, album->title));
    }
    return albums;
}

void RestoreAll(Library& library) {
    for (AlbumRow& album : library.Albums()) {
        if (album.isOwn && !album.isNew) album.count.Restore();
    }
    std::map<std::string, TrackSet> newcomers;
    for (TrackRow& track : library.Tracks()) {
        if (track.isGone || !track.isOwn) continue;
        if (track.isNew) {
            newcomers[track.cdjid].insert(&track);
            continue;
        }
        track.number.Restore();
        if (track.cdjidBefore.IsNull() || track.cdjid == track.cdjidBefore.Text()) continue;
        const FieldValue home{"CDJID", track.cdjidBefore.Text()};
        library.Change(track, std::span(&home, 1));
    }
    for (const auto& [cdjid, tracks] : newcomers)
        NumberApart(library, cdjid, tracks);
}

}  // namespace quillon
