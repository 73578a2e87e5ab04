#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>

#include "picker/layout.h"
#include "picker/modern/buttons.h"
#include "picker/modern/catalogue.h"
#include "picker/modern/frame.h"
#include "picker/modern/views.h"

namespace quillon {

/// Writes the texts of the numbered pages: albums with all their tracks.
class AlbumPages {
  public:
    /// All must outlive this object; `index` is the view that leads back.
    AlbumPages(const PageFrame& frame, const PlayerButtons& buttons, const Catalogue& catalogue,
               const PickerLayout& layout, const PickerView& index);

    std::size_t Count() const { return layout_.Pages(catalogue_.Count()); }

    /// A page, counted from 1. `onAlbum` is called before each of its albums; false ends the page,
    /// whose text is then of no use.
    using OnAlbum = std::function<bool(const PickerAlbum&)>;
    std::string Page(std::size_t page, const OnAlbum& onAlbum) const;

  private:
    std::string Album(std::size_t number) const;
    std::string Tracks(std::size_t number) const;
    std::string Navigation(std::size_t page) const;

    const PageFrame& frame_;
    const PlayerButtons& buttons_;
    const Catalogue& catalogue_;
    const PickerLayout& layout_;
    std::unordered_map<std::size_t, std::string> indexPageOf_;  ///< by a page's first album
};

}  // namespace quillon
