#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "jet/storage/format/page.h"
#include "jet/storage/format/page_store.h"
#include "jet/value.h"

namespace jet::storage {

/// Told about the pages that an index takes and gives back, so that its owner can keep the index's
/// usage map.
class IndexPageListener {
  public:
    virtual ~IndexPageListener() = default;
    virtual void PageTaken(PageNumber page) = 0;
    virtual void PageReleased(PageNumber page) = 0;
};

/// One index: a B+ tree of (key, row) entries whose root page never moves.
class IndexTree {
  public:
    /// `definition` is the first page of the table's definition (stored in every index page).
    /// `pages` and `listener` are not owned and must outlive this object.
    IndexTree(PageStore& pages, IndexPageListener& listener, PageNumber root,
              PageNumber definition);

    /// Makes `root` an empty index.
    static void MakeEmpty(Page& root, PageNumber definition);

    void Insert(std::span<const std::uint8_t> key, RowId row);

    /// Removes the entry; Error(Damaged) if it is not there.
    void Remove(std::span<const std::uint8_t> key, RowId row);

    /// Whether any entry has exactly this key.
    bool ContainsKey(std::span<const std::uint8_t> key) const;

    /// All entries in order.
    void ForEach(
        const std::function<void(std::span<const std::uint8_t> key, RowId row)>& visit) const;

  private:
    PageStore& pages_;
    IndexPageListener& listener_;
    PageNumber root_;
    PageNumber definition_;
};

}  // namespace jet::storage
