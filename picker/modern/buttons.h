#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "picker/albums.h"

namespace quillon {

/// What modern pages offer to ask the player for, as links or as forms; both look like buttons, and
/// the player gets from both what it gets from the pages of the other style.
class PlayerButtons {
  public:
    virtual ~PlayerButtons() = default;

    /// Play, Play next and Add for a whole album, counted from 0.
    virtual std::string Album(const PickerAlbum& album, std::size_t number) const = 0;

    /// Add for one track of it; "" for a track without a number: 0 asks for the whole album.
    virtual std::string Track(const PickerAlbum& album, std::size_t number,
                              const PickerTrack& track) const = 0;

    /// The form that saves the player's current playlist under a name.
    virtual std::string SavePlaylist() const = 0;

    virtual std::string ClearPlaylist() const = 0;
};

/// Forms, or else links.
std::unique_ptr<PlayerButtons> MakePlayerButtons(bool forms);

}  // namespace quillon
