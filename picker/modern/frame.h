#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "picker/layout.h"
#include "picker/modern/buttons.h"
#include "picker/modern/catalogue.h"
#include "picker/modern/views.h"

namespace quillon {

/// What stands around the content of every modern page: the host's head and foot, the bar with the
/// search field, the views and the player's playlist.
class PageFrame {
  public:
    /// Where the script finds what it searches.
    struct Data {
        std::string albumsUrl, tracksUrl;
    };

    /// `views` and `buttons` must outlive this object. `coverPath` is the covers' web path.
    PageFrame(const std::vector<PickerView>& views, const PlayerButtons& buttons,
              const PickerLayout& layout, std::string_view coverPath, const Data& data);

    /// `current` is the view that the page belongs to; nullptr for an album page.
    std::string Begin(std::string_view title, const PickerView* current) const;
    std::string End() const;

    /// The cover of an album or its initials, `lazy` where it may be loaded late. What it shows is
    /// said beside it, so it has no text of its own.
    std::string Cover(const PickerAlbum& album, const AlbumExtras& extras, bool lazy) const;

  private:
    std::string ViewLinks(const PickerView* current) const;

    const std::vector<PickerView>& views_;
    const PlayerButtons& buttons_;
    std::string thumbnailUrl_;
    std::string head_, main_, script_;  ///< markup that is the same on all pages
};

/// The number of the colours in which initials are shown, from 0 on, for an artist.
std::size_t ToneOf(std::string_view artist);

}  // namespace quillon
