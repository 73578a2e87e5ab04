#include "id3/track_artists.h"

#include <cstddef>

#include "id3/tag_agreement.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

/// Bytes; the database holds as many characters.
constexpr std::size_t LongestArtist = 255;

bool AreSame(std::string_view left, std::string_view right) {
    return EqualIgnoringCase(left, right) || IsCutOf(left, right) || IsCutOf(right, left);
}

}  // namespace

void TrackArtists::Add(std::string_view tagArtist) {
    const std::string_view artist = Trim(tagArtist);
    if (artist.empty() || areSeveral_) return;
    if (first_.empty()) {
        first_ = artist;
    } else {
        areSeveral_ = !AreSame(artist, first_);
    }
}

std::string TrackArtists::Of(std::string_view tagArtist, std::string_view folderArtist) const {
    const std::string_view artist = Trim(tagArtist);
    const bool isOwn = areSeveral_ && !artist.empty() && artist.size() <= LongestArtist &&
                       !IsNameOf(artist, folderArtist) && !IsCutOf(artist, folderArtist) &&
                       !IsCutOf(folderArtist, artist);
    return std::string(isOwn ? artist : folderArtist);
}

}  // namespace quillon
