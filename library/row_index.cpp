#include "library/row_index.h"

#include <utility>

namespace quillon {

void RowIndex::Add(std::uint32_t hash, Row row) {
    if (4 * (used_ + 1) > 3 * slots_.size()) Grow();
    Slot& slot = slots_[SlotOf(hash)];
    if (slot.last == None) ++used_;
    entries_.push_back({row, slot.last});
    slot = {hash, static_cast<Entry>(entries_.size() - 1)};
}

/// The slot of this hash, or the free one that it would get.
std::size_t RowIndex::SlotOf(std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].last != None && slots_[at].hash != hash)
        at = (at + 1) & mask;
    return at;
}

void RowIndex::Grow() {
    // In large steps, as each takes all slots in hand again.
    constexpr std::size_t Smallest = 16, Step = 4;
    const std::vector<Slot> old =
        std::exchange(slots_, std::vector<Slot>(slots_.empty() ? Smallest : Step * slots_.size()));
    for (const Slot& slot : old) {
        if (slot.last != None) slots_[SlotOf(slot.hash)] = slot;
    }
}

}  // namespace quillon
