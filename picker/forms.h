#pragma once

#include "picker/controls.h"

namespace quillon {

/// The controls as forms with buttons. Only the numbered list of pages has links here, too: a
/// button a page would bury the page.
class PickerForms : public PickerControls {
  public:
    std::string Album(const PickerAlbum& album) const override;
    std::string Track(const PickerAlbum& album, const PickerTrack& track) const override;
    std::string SavePlaylist() const override;
    std::string Navigation(std::size_t page, std::size_t pageCount) const override;
};

}  // namespace quillon
