#pragma once

#include <optional>
#include <string>
#include <vector>

#include "picker/albums.h"
#include "platform/date_time.h"

namespace quillon {

/// What modern pages know of an album beyond what all pages show.
struct AlbumExtras {
    std::string genre;              ///< that of most of its songs; "" for none
    std::optional<DateTime> added;  ///< when it came into the library
    std::string thumbnail;          ///< file name; "" where initials stand for it
};

/// The albums of modern pages, each with its extras at the same place.
struct Catalogue {
    PickerAlbums all;
    std::vector<AlbumExtras> extras;

    std::size_t Count() const { return all.albums.size(); }
};

/// Adds genres, which the download table has for songs, and the days on which albums were added.
Catalogue MakeCatalogue(PickerAlbums albums, Connection& connection);

}  // namespace quillon
