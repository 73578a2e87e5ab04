#pragma once

#include <memory>

#include "jet/storage/format/page.h"

namespace jet::storage {

/// The pages of one database file, as the structures above it (rows, usage maps, index trees) see
/// them. Changes stay together until the store's owner commits them as one group.
class PageStore {
  public:
    virtual ~PageStore() = default;

    /// The page as it stands now, changes not yet committed included. The content stays valid, and
    /// stays as it is, while the caller holds the pointer or until the page is modified.
    /// Throws Error(Damaged) for a page outside the file.
    virtual std::shared_ptr<const Page> Read(PageNumber page) = 0;

    /// The page for changing. The reference is valid until the next commit.
    virtual Page& Modify(PageNumber page) = 0;

    /// A page that nothing uses yet, all zero, marked as used in the global map.
    virtual PageNumber Allocate() = 0;

    /// Gives a page back to the global map. No pointer to it may be left anywhere.
    virtual void Free(PageNumber page) = 0;

    /// Pages in the file, those appended but not yet committed included.
    virtual PageNumber PageCount() const = 0;
};

}  // namespace jet::storage
