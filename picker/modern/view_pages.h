#pragma once

#include <cstddef>
#include <string>

#include "picker/layout.h"
#include "picker/modern/catalogue.h"
#include "picker/modern/frame.h"
#include "picker/modern/views.h"

namespace quillon {

/// Writes the texts of the pages with covers to choose from, the index among them.
class ViewPages {
  public:
    /// All three must outlive this object. `leastTracks` is told to the reader.
    ViewPages(const PageFrame& frame, const Catalogue& catalogue, const PickerLayout& layout,
              int leastTracks);

    /// A page of a view, counted from 0.
    std::string Page(const PickerView& view, std::size_t page) const;

  private:
    std::string Headings(const PickerView& view, std::size_t page) const;
    std::string Albums(const PickerView& view, const Piece& piece) const;
    std::string Card(const PickerView& view, std::size_t album, bool lazy) const;
    std::string Steps(const PickerView& view, std::size_t page) const;

    const PageFrame& frame_;
    const Catalogue& catalogue_;
    const PickerLayout& layout_;
    int leastTracks_;
};

}  // namespace quillon
