#pragma once

#include <vector>

#include "jet/storage/map_row.h"

namespace jet::storage {

/// A set of pages that belong to something: the data pages of a table, those with room, the pages
/// of an index, ... The stored row keeps its size; when the pages lie too far apart for it, it
/// names bitmap pages instead.
class UsageMap {
  public:
    UsageMap(PageStore& pages, RowId row) : pages_(pages), row_(pages, row) {}

    bool Contains(PageNumber page) const { return row_.Get(page).value_or(false); }
    void Add(PageNumber page);
    void Remove(PageNumber page) { row_.Put(page, false); }

    /// All pages in order. Error(Damaged) if one lies outside the file.
    std::vector<PageNumber> Pages() const;

    /// Makes the bytes of a new map row an empty map.
    static void MakeEmpty(std::span<std::uint8_t> row);

  private:
    bool MoveStart(PageNumber page);
    void Rewrite(const std::vector<PageNumber>& pages);

    PageStore& pages_;
    MapRow row_;
};

}  // namespace jet::storage
