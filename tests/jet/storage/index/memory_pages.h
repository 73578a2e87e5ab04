#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <vector>

#include "jet/storage/format/page_store.h"
#include "jet/storage/index/index_tree.h"

namespace jet::test {

/// Pages in memory, changed in place. Keeps to the promises of PageStore and no more: what Read
/// returned changes with the page.
class MemoryPages : public storage::PageStore {
  public:
    MemoryPages();
    /// All pages of a file.
    explicit MemoryPages(const std::filesystem::path& file);

    std::shared_ptr<const storage::Page> Read(storage::PageNumber page) override;
    storage::Page& Modify(storage::PageNumber page) override;
    storage::PageNumber Allocate() override;
    void Free(storage::PageNumber page) override;
    storage::PageNumber PageCount() const override;

    /// Pages allocated and not freed.
    const std::set<storage::PageNumber>& InUse() const { return inUse_; }
    /// How often Modify() was called.
    std::size_t Modifications() const { return modifications_; }

  private:
    std::vector<std::shared_ptr<storage::Page>> pages_;
    std::set<storage::PageNumber> inUse_, free_;
    std::size_t modifications_ = 0;
};

/// Remembers which pages an index says it has.
class ListedPages : public storage::IndexPageListener {
  public:
    void PageTaken(storage::PageNumber page) override;
    void PageReleased(storage::PageNumber page) override;

    const std::set<storage::PageNumber>& Pages() const { return pages_; }

  private:
    std::set<storage::PageNumber> pages_;
};

}  // namespace jet::test
