#pragma once

#include <functional>
#include <utility>

#include "jet/storage/map_row.h"

namespace jet::storage {

/// The map of free pages (a set bit means free): which page may be taken next. It covers the whole
/// file and grows with it, first by a longer row, then by bitmap pages.
class GlobalMap {
  public:
    /// `append` adds a page of zeros at the end of the file and returns its number.
    GlobalMap(PageStore& pages, std::function<PageNumber()> append)
        : pages_(pages), row_(pages, {1, 0}), append_(std::move(append)) {}

    /// A page that was free or did not exist; its bit is cleared, its content is arbitrary.
    PageNumber Take();

    /// Marks a page as free. Below the map's range that cannot be noted: such a page stays lost
    /// until the file is compacted.
    void Release(PageNumber page);

    /// Forgets what earlier calls learned; needed after changes were undone.
    void Forget() { searchFrom_ = 0; }

  private:
    PageNumber FindFree();
    void Cover(PageNumber page);
    bool Lengthen(PageNumber page);
    void ConvertToBitmaps(PageNumber page);
    void AddBitmap(std::size_t stretch, std::uint8_t content);

    PageStore& pages_;
    MapRow row_;
    std::function<PageNumber()> append_;
    PageNumber searchFrom_ = 0;  ///< no page below is free
};

}  // namespace jet::storage
