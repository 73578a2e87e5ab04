#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "jet/storage/format/page.h"
#include "jet/value.h"

namespace jet::storage {

/// An index entry (key and row, on a node also the child), wherever its bytes are kept.
using EntryBytes = std::span<const std::uint8_t>;

/// The bytes behind the key of a leaf's entry: page and slot of the row.
constexpr std::size_t EntryRowSize = 4;

/// Entries that wait to be put into an index, to be put there in order.
class EntryBatch {
  public:
    bool IsEmpty() const { return first_ == items_.size(); }
    std::size_t Count() const { return items_.size() - first_; }
    std::size_t Size() const { return bytes_.size(); }

    /// Makes room for one more entry: the Add() that follows cannot fail.
    void Reserve(std::span<const std::uint8_t> key);
    void Add(std::span<const std::uint8_t> key, RowId row);

    /// Whether the entries were added in the order of the index.
    bool CameInOrder() const { return inOrder_; }
    /// The key of the entry added last.
    std::span<const std::uint8_t> LastKey() const;

    /// Orders the entries; until then At() gives them as they were added.
    void Sort();
    EntryBytes At(std::size_t i) const { return BytesOf(items_[first_ + i]); }
    /// Takes the first entries out. What the last one leaves behind is an empty batch.
    void DropFirst(std::size_t count);

  private:
    struct Item {
        std::uint64_t beginning;  ///< the first bytes as a number, which decides most comparisons
        std::uint32_t start, size;
    };
    EntryBytes BytesOf(const Item& item) const {
        return std::span(bytes_).subspan(item.start, item.size);
    }
    bool IsLess(const Item& left, const Item& right) const;

    Bytes bytes_;
    std::vector<Item> items_;
    std::size_t first_ = 0;
    bool inOrder_ = true;
};

/// Memory for the entries of pages that are being rewritten. What it hands out stays where it is
/// until Clear().
class EntryMemory {
  public:
    std::span<std::uint8_t> Take(std::size_t size);
    /// A copy of both, one behind the other.
    EntryBytes Join(EntryBytes bytes, EntryBytes more = {});
    void Clear();

  private:
    std::vector<Bytes> blocks_;
    std::size_t used_ = 0;  ///< of the last block
};

}  // namespace jet::storage
