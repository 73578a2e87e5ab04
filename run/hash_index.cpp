#include "run/hash_index.h"

#include <utility>

namespace quillon {

std::uint32_t MixedHash(std::uint64_t first, std::uint64_t second) {
    // The finishing steps of SplitMix64.
    std::uint64_t value = first + 0x9E3779B97F4A7C15U * (second + 1);
    value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
    return static_cast<std::uint32_t>(value ^ (value >> 31U));
}

void HashIndex::Add(std::uint32_t hash, Row row) {
    if (4 * (count_ + 1) > 3 * slots_.size()) Grow();
    Place({hash, row});
    ++count_;
}

void HashIndex::Place(const Slot& slot) {
    std::size_t at = Home(slot.hash);
    while (slots_[at].row != Free)
        at = Home(at + 1);
    slots_[at] = slot;
}

void HashIndex::Grow() {
    constexpr std::size_t Smallest = 16;
    const std::vector<Slot> old =
        std::exchange(slots_, std::vector<Slot>(slots_.empty() ? Smallest : 2 * slots_.size()));
    for (const Slot& slot : old) {
        if (slot.row != Free) Place(slot);
    }
}

}  // namespace quillon
