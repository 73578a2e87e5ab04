#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "jet/storage/format/page.h"
#include "jet/storage/format/page_store.h"
#include "jet/value.h"

namespace jet::storage {

class IndexPageView;
struct IndexPageContent;

/// Told about the pages that an index takes and gives back, so that its owner can keep the index's
/// usage map.
class IndexPageListener {
  public:
    virtual ~IndexPageListener() = default;
    virtual void PageTaken(PageNumber page) = 0;
    virtual void PageReleased(PageNumber page) = 0;
};

/// The most bytes a key may have: a page must hold two entries.
constexpr std::size_t LongestKey = 1700;

/// One index: a B+ tree of (key, row) entries whose root page never moves.
///
/// Every page is checked before it is used: a tree that contradicts itself gives Error(Damaged).
class IndexTree {
  public:
    /// `definition` is the first page of the table's definition (stored in every index page).
    /// `pages` and `listener` are not owned and must outlive this object.
    IndexTree(PageStore& pages, IndexPageListener& listener, PageNumber root,
              PageNumber definition);

    /// Makes `root` an empty index.
    static void MakeEmpty(Page& root, PageNumber definition);

    /// Adds an entry. Error(TooLong) for a key of more than LongestKey bytes; Error(Damaged) if
    /// the entry is there already.
    void Insert(std::span<const std::uint8_t> key, RowId row);

    /// Removes the entry; Error(Damaged) if it is not there.
    void Remove(std::span<const std::uint8_t> key, RowId row);

    /// Whether any entry has exactly this key.
    bool ContainsKey(std::span<const std::uint8_t> key) const;

    /// Calls `visit` for the row of each entry whose key begins with these bytes, in order, until
    /// it returns false. The index must not be changed meanwhile.
    void RowsWith(std::span<const std::uint8_t> start,
                  const std::function<bool(RowId row)>& visit) const;

    /// All entries in order. The index must not be changed meanwhile.
    void ForEach(
        const std::function<void(std::span<const std::uint8_t> key, RowId row)>& visit) const;

  private:
    struct Step;
    using Path = std::vector<Step>;
    struct NewChild;

    std::shared_ptr<const Page> Read(PageNumber page) const;
    Page& Modify(PageNumber page);
    PageNumber Take();

    Path Descend(std::span<const std::uint8_t> bytes) const;
    Bytes GreatestBelow(PageNumber page) const;

    void Rewrite(const Path& path, std::size_t level, IndexPageContent content,
                 const std::optional<Bytes>& newGreatest, bool ascending);
    void Split(const Path& path, std::size_t level, IndexPageContent content,
               const std::vector<std::size_t>& cuts, const std::optional<Bytes>& newGreatest,
               bool ascending);
    void UpdateParent(const Path& path, std::size_t level, std::span<const NewChild> added,
                      const std::optional<Bytes>& newGreatest, bool ascending);
    void RemovePage(const Path& path, std::size_t level);
    void Release(PageNumber page);
    void SeparateChildren(PageNumber left, PageNumber right);

    PageStore& pages_;
    IndexPageListener& listener_;
    PageNumber root_;
    PageNumber definition_;
};

}  // namespace jet::storage
