#include "reconcile/lost_tracks.h"

#include "database/album_key.h"

namespace quillon {

std::vector<LostTrack> FindLostTracks(Walk& walk, const std::vector<HeldAlbum>& held,
                                      const std::unordered_set<const TrackRow*>& claimed,
                                      const std::vector<std::string>& absent) {
    std::vector<UnlistedFolder> unseen = walk.unlisted;
    for (const std::string& folder : absent)
        unseen.push_back({folder, "", ""});
    const std::unordered_set<const TrackRow*> hidden = TracksBelow(walk.library, unseen);
    std::vector<LostTrack> lost;
    const auto add = [&](TrackRow& track, bool isDisplaced) {
        AlbumRow* const album = walk.library.AlbumOf(track);
        if (album == nullptr || hidden.contains(&track) ||
            walk.hidden.contains(AlbumKey(album->artist, album->title)))
            return;
        lost.push_back({&track, album, isDisplaced});
    };
    for (TrackRow& track : walk.library.Tracks()) {
        if (track.isOwn && !track.isGone && track.number.Value() == 0 && !claimed.contains(&track))
            add(track, false);
    }
    for (const HeldAlbum& album : held) {
        for (const HeldAlbum::File& file : album.kinds) {
            if (file.displaced != nullptr) add(*file.displaced, true);
        }
    }
    return lost;
}

}  // namespace quillon
