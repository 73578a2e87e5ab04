#pragma once

#include <cstddef>
#include <string>

#include "picker/albums.h"

namespace quillon {

/// What a page offers to click on. There are two sets, plain links and forms with buttons; the
/// player gets the same requests from both.
class PickerControls {
  public:
    virtual ~PickerControls() = default;

    /// Add, Next and Play for a whole album.
    virtual std::string Album(const PickerAlbum& album) const = 0;

    /// Add for one track; "" for a track without a number: 0 asks for the whole album.
    virtual std::string Track(const PickerAlbum& album, const PickerTrack& track) const = 0;

    /// Saves the player's current playlist under a name.
    virtual std::string SavePlaylist() const = 0;

    /// Clears the player's playlist and leads to the other pages; `page` is 0 for the index.
    virtual std::string Navigation(std::size_t page, std::size_t pageCount) const = 0;
};

/// The numbered list of pages: all of them on the index, those near by on the others, so that a
/// set of many pages does not grow with the square of their number.
std::string NumberedPages(std::size_t page, std::size_t pageCount);

}  // namespace quillon
