#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/database.h"
#include "run/hash_index.h"
#include "run/text_pool.h"

namespace quillon {

/// What a song's row is recognised by beside its key: fingerprints of its sound file and of what
/// stays when that is renamed. The drive does not count, since stored paths may get another one.
struct SongTraits {
    std::uint32_t soundFile = 0;
    std::uint32_t origin = 0;  ///< of the folder and the row's date of addition

    /// Whether this can be the same row, its file being the same or renamed in its folder.
    bool Fit(const SongTraits& other) const {
        return soundFile == other.soundFile || origin == other.origin;
    }
    bool operator==(const SongTraits&) const = default;
};

/// What the playlists need to know of a track, as small as can be: there may be a million.
struct IndexedTrack {
    std::int32_t id = 0;
    std::int32_t number = 0;     ///< `Track`; 0 where it is Null
    TextPool::Number album = 0;  ///< see TrackIndex::Cdjid
    SongTraits traits;
};

/// All tracks of the database by key and by place, read once and looked up for each playlist entry.
/// Shows what the database held when this was made. Letter case does not count.
class TrackIndex {
  public:
    /// Throws Failure.
    explicit TrackIndex(Connection& connection);

    bool IsEmpty() const { return tracks_.empty(); }
    const std::vector<IndexedTrack>& All() const { return tracks_; }
    /// Whether any track has this `CDJID`.
    bool HasAlbum(std::string_view cdjid) const { return cdjids_.Find(cdjid).has_value(); }
    /// The first track of the album with this number; null when there is none.
    const IndexedTrack* FindPlace(std::string_view cdjid, std::int32_t number) const;
    /// Null when no track has this `ID`.
    const IndexedTrack* FindId(std::int32_t id) const;

    std::string_view Cdjid(const IndexedTrack& track) const { return cdjids_.Text(track.album); }

  private:
    void Add(const IndexedTrack& track);
    const IndexedTrack* Find(TextPool::Number album, std::int32_t number) const;

    TextPool cdjids_;
    std::vector<IndexedTrack> tracks_;
    HashIndex byId_, byPlace_;
};

}  // namespace quillon
