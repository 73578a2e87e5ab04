#include "reconcile/keep_missing.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "database/waiting_music.h"
#include "platform/clock.h"
#include "reconcile/unlisted.h"
#include "reconcile/walk.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class MissingStep { Keep = 1, Forget = 2 };

/// Tells of tracks: of whole albums in one line each.
class KeptMusicTelling {
  public:
    KeptMusicTelling(Run& run, std::string album, std::string track)
        : run_(run), album_(std::move(album)), track_(std::move(track)) {}

    void Add(const TrackRow& track, const AlbumRow& album, bool isWholeAlbum) {
        if (!isWholeAlbum) {
            lines_.push_back(track_ + track.soundFile.Text());
            return;
        }
        const auto [count, isNew] = counts_.try_emplace(&album, 0);
        if (isNew) albums_.push_back(&album);
        ++count->second;
    }

    void Tell() const {
        for (const AlbumRow* const album : albums_) {
            WriteLog(run_, LogSource,
                     album_ + NameOf(*album) + ", " + TracksText(counts_.at(album)));
        }
        for (const std::string& line : lines_)
            WriteLog(run_, LogSource, line);
    }

  private:
    Run& run_;
    std::string album_, track_;
    std::vector<const AlbumRow*> albums_;
    std::unordered_map<const AlbumRow*, std::size_t> counts_;
    std::vector<std::string> lines_;
};

std::string Days(std::int32_t days) {
    return std::to_string(days) + (days == 1 ? " day" : " days");
}

/// Tracks that waited and have a number again.
void EndWaiting(Walk& walk) {
    KeptMusicTelling telling(walk.run, "Album is back: ", "Track is back: ");
    std::vector<TrackId> back;
    for (const auto& [id, song] : walk.waiting->Songs()) {
        TrackRow* const track = walk.library.FindTrack(id);
        if (track != nullptr && track->number.Value() == 0) continue;
        back.push_back(id);
        if (track == nullptr || !std::exchange(track->isWaiting, false)) continue;
        if (AlbumRow* const album = walk.library.AlbumOf(*track))
            telling.Add(*track, *album, album->isWaiting);
    }
    for (AlbumRow& album : walk.library.Albums())
        album.isWaiting = album.isWaiting && album.count.Value() == 0;
    for (const TrackId id : back)
        walk.waiting->Remove(id);
    telling.Tell();
}

}  // namespace

KeptMusic TakeOutWaiting(Walk& walk, MissingMusic& missing,
                         const std::vector<std::string>& absent) {
    KeptMusic kept;
    std::vector<UnlistedFolder> unseen = walk.unlisted;
    for (const std::string& folder : absent)
        unseen.push_back({folder, "", ""});
    const std::unordered_set<const TrackRow*> hidden = TracksBelow(walk.library, unseen);
    const double now = walk.run.clock.Now().days;
    std::vector<MissingMusic::Track> going, fresh;
    std::unordered_set<const AlbumRow*> keptAlbums;
    for (const MissingMusic::Track& track : missing.tracks) {
        const bool waits = track.row->isWaiting;
        const WaitingSong* const song = waits ? walk.waiting->Find(track.row->id) : nullptr;
        const bool isOver =
            song != nullptr && now - song->since.days >= walk.run.movedMusic.KeepDays;
        // A duplicate that this run has removed is not coming back.
        const bool isRemoved = walk.run.removals.HasRemovedFile(track.row->soundFile);
        if (isRemoved || (isOver && !hidden.contains(track.row))) {
            going.push_back(track);
            continue;
        }
        kept.tracks.push_back({track, !waits});
        keptAlbums.insert(track.album);
        if (!waits) fresh.push_back(track);
    }
    for (AlbumRow* const album : missing.albums) {
        if (keptAlbums.contains(album)) kept.albums.push_back(album);
    }
    std::erase_if(missing.albums, [&](AlbumRow* album) { return keptAlbums.contains(album); });
    missing.tracks = going;
    std::vector<MissingMusic::Track> doubtful = std::move(going);
    doubtful.insert(doubtful.end(), fresh.begin(), fresh.end());
    const std::size_t owned = missing.planned.outOf;
    missing.planned = PlanRemoval(walk, doubtful, owned);
    if (missing.planned.doubt.empty()) missing.planned = PlanRemoval(walk, missing.tracks, owned);
    return kept;
}

bool KeepWaiting(Walk& walk, const KeptMusic& kept) {
    Run& run = walk.run;
    const std::string days = Days(run.movedMusic.KeepDays);
    KeptMusicTelling telling(run, "Album is missing, it is kept for " + days + ": ",
                             "Track is missing, it is kept for " + days + ": ");
    const std::unordered_set<const AlbumRow*> whole(kept.albums.begin(), kept.albums.end());
    for (const KeptMusic::Track& entry : kept.tracks) {
        if (!entry.isNew) continue;
        const TrackRow& row = *entry.track.row;
        // A run that was killed may have noted it already.
        const WaitingSong* const known = walk.waiting->Find(row.id);
        walk.waiting->Add(row.id, {.number = row.number.Before().value_or(0),
                                   .since = known == nullptr ? run.clock.Now() : known->since});
        telling.Add(row, *entry.track.album, whole.contains(entry.track.album));
    }
    Steps steps(run, "KeepMissingMusic");
    if (!steps.Try(MissingStep::Keep, [&] { walk.waiting->Save(); })) return false;
    for (const KeptMusic::Track& entry : kept.tracks) {
        entry.track.row->number.Set(0);
        entry.track.row->isWaiting = true;
        if (entry.isNew) ++run.counts.tracksChanged;
    }
    for (AlbumRow* const album : kept.albums) {
        album->count.Set(0);
        if (!std::exchange(album->isWaiting, true)) ++run.counts.albumsChanged;
    }
    telling.Tell();
    return true;
}

void ForgetReturned(Walk& walk) {
    EndWaiting(walk);
    Steps(walk.run, "KeepMissingMusic").Try(MissingStep::Forget, [&walk] { walk.waiting->Save(); });
}

}  // namespace quillon
