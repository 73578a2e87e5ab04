#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillon {

/// Finds the rows of somebody else's table by the hash of a key that many may share. It does not
/// know the keys: the caller compares them. So a row whose key changes is just added again, and
/// one that is removed is skipped.
class RowIndex {
  public:
    using Row = std::uint32_t;

    void Add(std::uint32_t hash, Row row);

    /// Calls visit(row) for the rows that were added with this hash, the last one first, some
    /// perhaps twice.
    template <typename Visit>
    void ForEach(std::uint32_t hash, Visit visit) const {
        if (slots_.empty()) return;
        for (Entry at = slots_[SlotOf(hash)].last; at != None; at = entries_[at].before)
            visit(entries_[at].row);
    }

  private:
    using Entry = std::uint32_t;
    static constexpr Entry None = 0xFFFFFFFF;

    struct Slot {
        std::uint32_t hash = 0;
        Entry last = None;
    };
    struct Link {
        Row row = 0;
        Entry before = None;
    };

    std::size_t SlotOf(std::uint32_t hash) const;
    void Grow();

    std::vector<Slot> slots_;  ///< as many as a power of two, or none; at most three in four used
    std::size_t used_ = 0;
    std::vector<Link> entries_;
};

}  // namespace quillon
