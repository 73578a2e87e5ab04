#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillon {

/// A 32-bit hash of two numbers in which every bit depends on all of theirs.
std::uint32_t MixedHash(std::uint64_t first, std::uint64_t second = 0);

/// Finds rows of somebody else's table by the hash of a key. Made for tables of a million rows: it
/// takes 8 bytes a slot, at most three quarters of the slots are in use, and it does not know the
/// keys; the caller compares them.
class HashIndex {
  public:
    using Row = std::uint32_t;

    /// The row that was added with this hash and for which `isWanted(row)` holds.
    template <typename IsWanted>
    std::optional<Row> Find(std::uint32_t hash, IsWanted isWanted) const {
        if (slots_.empty()) return std::nullopt;
        for (std::size_t at = Home(hash);; at = Home(at + 1)) {
            const Slot& slot = slots_[at];
            if (slot.row == Free) return std::nullopt;
            if (slot.hash == hash && isWanted(slot.row)) return slot.row;
        }
    }

    /// The key must not be in the index yet: of rows with the same key only one is to be added,
    /// else the equal hashes would have to be searched one by one.
    void Add(std::uint32_t hash, Row row);

  private:
    static constexpr Row Free = 0xFFFFFFFF;

    struct Slot {
        std::uint32_t hash = 0;
        Row row = Free;
    };

    std::size_t Home(std::size_t hash) const { return hash & (slots_.size() - 1); }
    void Place(const Slot& slot);
    void Grow();

    std::vector<Slot> slots_;  ///< as many as a power of two, or none
    std::size_t count_ = 0;
};

}  // namespace quillon
