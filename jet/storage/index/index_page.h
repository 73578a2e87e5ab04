#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "jet/storage/format/page.h"
#include "jet/storage/index/entry_batch.h"
#include "jet/storage/index/index_page_format.h"
#include "jet/value.h"

namespace jet::storage {

/// Bytes of a page that its entries can fill.
constexpr std::size_t EntryRoom = index_page_format::EntryRoom;

/// Appends what stands behind a key on a leaf page, big-endian: page and slot of the row.
void AppendRow(Bytes& entry, RowId row);

/// The page number of a child as it ends an entry of a node page, likewise.
std::array<std::uint8_t, 4> ChildBytes(PageNumber child);

/// The order of entries and keys: that of unsigned byte strings.
std::strong_ordering CompareBytes(std::span<const std::uint8_t> left,
                                  std::span<const std::uint8_t> right);

/// A checked look at one page of an index. An entry is, on a leaf, key and row; on a node, the
/// last entry of a child (so also key and row) and the child's page number. The last child of a
/// node may have no entry and is then its *tail*.
///
/// Built only from a page that holds what an index page must hold, so that no later access can
/// leave it; the page must outlive the view unchanged.
class IndexPageView {
  public:
    /// Throws Error(Damaged) that names `number` for anything but an index page of this table.
    IndexPageView(const Page& page, PageNumber number, PageNumber definition);

    bool IsLeaf() const { return leaf_; }
    std::size_t Count() const { return count_; }
    PageNumber Previous() const {
        return Load<PageNumber>(page_, index_page_format::PreviousOffset);
    }
    PageNumber Next() const { return Load<PageNumber>(page_, index_page_format::NextOffset); }
    PageNumber Tail() const {
        return leaf_ ? 0 : Load<PageNumber>(page_, index_page_format::TailOffset);
    }
    std::size_t PrefixLength() const { return prefix_; }
    std::uint8_t Height() const { return page_[index_page_format::HeightOffset]; }

    /// The number of entries that are less than `bytes` (all or the first part of key and row).
    std::size_t LowerBound(std::span<const std::uint8_t> bytes) const;

    /// Whether entry `i`, less the child on a node page, equals or begins with these bytes.
    bool IsEntry(std::size_t i, std::span<const std::uint8_t> bytes) const;
    bool BeginsWith(std::size_t i, std::span<const std::uint8_t> bytes) const;

    /// Entry `i` in full, with its prefix.
    Bytes Entry(std::size_t i) const;
    /// The same, put into `bytes`.
    void CopyEntry(std::size_t i, Bytes& bytes) const;
    /// All entries in full, copied into `memory`.
    std::vector<EntryBytes> Entries(EntryMemory& memory) const;
    /// Key and row of entry `i`, without the child of a node's entry.
    Bytes KeyAndRow(std::size_t i) const;
    /// The row that entry `i` names.
    RowId Row(std::size_t i) const;
    /// Child `i` of a node; the one behind the last entry is the tail.
    PageNumber Child(std::size_t i) const;
    /// Children of a node.
    std::size_t ChildCount() const { return count_ + (Tail() == 0 ? 0 : 1); }

    /// Bytes of the page that entries fill.
    std::size_t UsedBytes() const { return count_ == 0 ? 0 : ends_[count_ - 1]; }

    /// Puts an entry in front of entry `i` of `page`, which has the content this view was made
    /// from. False, and no change, if that takes more than moving bytes: no room, or not the
    /// prefix of the page.
    bool InsertInto(Page& page, std::size_t i, std::span<const std::uint8_t> entry) const;

    /// Takes entry `i` out of `page`.
    void RemoveFrom(Page& page, std::size_t i) const;

  private:
    std::size_t Start(std::size_t i) const { return i == 0 ? 0 : ends_[i - 1]; }
    /// What the page stores of an entry: all of the first, of others what follows the prefix.
    std::span<const std::uint8_t> Stored(std::size_t i) const;
    std::span<const std::uint8_t> Prefix() const;
    std::size_t SuffixSize() const { return leaf_ ? 0 : index_page_format::ChildSize; }
    void ReadEnds(PageNumber number);

    std::span<const std::uint8_t> page_;
    bool leaf_ = false;
    std::size_t prefix_ = 0;
    std::size_t count_ = 0;
    std::array<std::uint16_t, EntryRoom> ends_;  // only the first count_ are set
};

/// An index page taken apart, for changes that do more than move bytes. The entries' bytes are
/// kept by somebody else.
struct IndexPageContent {
    bool leaf = true;
    std::uint8_t height = 0;  ///< levels of pages below
    PageNumber previous = 0, next = 0, tail = 0;
    std::vector<EntryBytes> entries;  ///< in full

    /// Copies of the page's entries, kept in `memory`.
    static IndexPageContent From(const IndexPageView& view, EntryMemory& memory);

    /// Fills `page`; a prefix is left out of the entries only where they would not fit otherwise.
    /// They must fit.
    void WriteTo(Page& page, PageNumber definition) const;

    /// Whether entries `first` to `last` (not included) fit a page.
    bool Fits(std::size_t first, std::size_t last) const;

    /// Where to cut the entries so that each part fits a page; empty if they fit one. Parts take
    /// about the same room, or, if `ascending`, as many entries as they can hold.
    std::vector<std::size_t> Cuts(bool ascending) const;

  private:
    std::size_t KeySize(std::size_t i) const;
    std::size_t PrefixLength(std::size_t first, std::size_t last) const;
    std::size_t EndOfFullPage(std::size_t first) const;
    std::size_t Size(std::size_t first, std::size_t last) const;
    std::size_t BalancedCut(std::size_t first, std::size_t last) const;
};

}  // namespace jet::storage
