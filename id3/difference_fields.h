#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace quillon {

/// Labels of the tag record's pieces, in its order, as `SpinnerID3Differences.Field` holds them.
constexpr std::array<std::string_view, 9> TagLabels{"Tag",     "Song", "Artist", "Album", "Year",
                                                    "Comment", "Ver",  "Track",  "Genre"};

/// Places of the pieces in a tag record.
enum TagPiece : std::size_t {
    TagMarker,
    TagSong,
    TagArtist,
    TagAlbum,
    TagYear,
    TagComment,
    TagVer,
    TagTrack,
    TagGenre,
};

/// `Field` of the row that tells of a tag without a track number.
constexpr std::string_view TrackNumberMissing = "Track Number Missing";

}  // namespace quillon
