#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "jet/storage/format/page.h"
#include "jet/storage/format/page_store.h"
#include "jet/storage/index/entry_batch.h"
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
/// Error(TooLong) for a key of more bytes.
void CheckLength(std::span<const std::uint8_t> key);

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
    /// Makes this one empty; what becomes of its other pages is the owner's business.
    void MakeEmpty() { MakeEmpty(pages_.Modify(root_), definition_); }
    PageNumber Root() const { return root_; }

    /// Adds an entry. Error(TooLong) as CheckLength; Error(Damaged) if it is there already.
    void Insert(std::span<const std::uint8_t> key, RowId row);

    struct Inserted {
        std::size_t entries = 0;
        std::size_t newKeys = 0;  ///< keys that the index did not have before
    };
    /// Adds the first entries of a sorted batch, as many as go to `mostLeaves` pages. Each of these
    /// is written once, however many entries go there. Keys are not too long; Error(Damaged) if an
    /// entry is there already.
    Inserted Insert(const EntryBatch& batch, std::size_t mostLeaves);

    /// Removes the entry; Error(Damaged) if it is not there.
    void Remove(std::span<const std::uint8_t> key, RowId row);

    /// Whether any entry has exactly this key.
    bool ContainsKey(std::span<const std::uint8_t> key) const;

    /// Calls `visit` for the row of each entry whose key begins with these bytes, in order, until
    /// it returns false. The index must not be changed meanwhile.
    void RowsWith(std::span<const std::uint8_t> start,
                  const std::function<bool(RowId row)>& visit) const;

    /// The greatest key; none where there is no entry.
    std::optional<Bytes> GreatestKey() const;

    /// All entries in order. The index must not be changed meanwhile.
    void ForEach(
        const std::function<void(std::span<const std::uint8_t> key, RowId row)>& visit) const;

  private:
    /// One page on the way from the root to a leaf.
    struct Step {
        PageNumber page = 0;
        std::size_t child = 0;  ///< on a node: which child the way goes on to; on a leaf: the place
    };
    using Path = std::vector<Step>;
    /// A page that a node is to name in front of the child on the path.
    struct NewChild {
        EntryBytes greatest;  ///< key and row of its last entry
        PageNumber page = 0;
    };

    [[noreturn]] void ThrowDamaged(const char* what) const;

    std::shared_ptr<const Page> Read(PageNumber page) const;
    Page& Modify(PageNumber page);
    /// Calls `look` with each leaf from that step on, and the place on it where to begin, until it
    /// returns false.
    template <typename Look>
    void AlongLeaves(Step from, Look look) const;
    PageNumber Take();

    Path Descend(EntryBytes bytes, std::optional<Bytes>* greatest = nullptr) const;
    EntryBytes GreatestBelow(PageNumber page);

    Inserted InsertIntoLeaf(const EntryBatch& batch, std::size_t first);
    std::size_t Merge(const IndexPageView& leaf, std::vector<EntryBytes>& entries,
                      const EntryBatch& batch, std::size_t first, std::size_t count) const;
    bool IsNewKey(const IndexPageView& leaf, std::span<const EntryBytes> before, EntryBytes entry,
                  std::span<const EntryBytes> behind) const;

    void Rewrite(const Path& path, std::size_t level, IndexPageContent content,
                 const std::optional<EntryBytes>& newGreatest, bool ascending);
    void Split(const Path& path, std::size_t level, IndexPageContent content,
               const std::vector<std::size_t>& cuts, const std::optional<EntryBytes>& newGreatest,
               bool ascending);
    void UpdateParent(const Path& path, std::size_t level, std::span<const NewChild> added,
                      const std::optional<EntryBytes>& newGreatest, bool ascending);
    void RemovePage(const Path& path, std::size_t level);
    void Release(PageNumber page);
    void SeparateChildren(PageNumber left, PageNumber right);

    PageStore& pages_;
    IndexPageListener& listener_;
    PageNumber root_;
    PageNumber definition_;
    EntryMemory memory_;  ///< of the change under way
};

}  // namespace jet::storage
