#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "library/library.h"
#include "library/row_index.h"

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

SongTraits TraitsOf(const TrackRow& track);

/// The first of these for a path.
std::uint32_t SoundFileTrait(std::string_view path);

/// `Tracks.ID` and `Tracks.Track` as playlists have them; 0 where there is no number.
std::int32_t IdOf(const TrackRow& track);
std::int32_t PlaceOf(const TrackRow& track);

/// All tracks of the library by their places, to be looked up for each playlist entry. Shows the
/// places that the tracks have when the first one is looked up.
class TrackIndex {
  public:
    /// The library must outlive this object.
    explicit TrackIndex(Library& library) : library_(library) {}

    /// Whether the library has no tracks with a `CDJID`.
    bool IsEmpty() const;
    /// Whether any track has this `CDJID`.
    bool HasAlbum(std::string_view cdjid) const;
    /// The first track of the album with this number; null when there is none.
    const TrackRow* FindPlace(std::string_view cdjid, std::int32_t number) const;
    /// Null when no track has this `ID`.
    const TrackRow* FindId(std::int32_t id) const;

    /// Calls visit(track) for the first track at each place.
    template <typename Visit>
    void ForEachPlace(Visit visit) const {
        for (const TrackRow& track : library_.Tracks()) {
            if (!track.isGone && FindPlace(track.cdjid, PlaceOf(track)) == &track) visit(track);
        }
    }

  private:
    /// Places and albums by their first tracks.
    struct Places {
        RowIndex tracks, albums;
    };
    const Places& Known() const;

    Library& library_;
    mutable std::optional<Places> places_;
};

}  // namespace quillon
