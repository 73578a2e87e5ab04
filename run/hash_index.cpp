#include "run/hash_index.h"

#include <utility>

#include "run/split_mix.h"

namespace quillon {

std::uint32_t MixedHash(std::uint64_t first, std::uint64_t second) {
    return static_cast<std::uint32_t>(SplitMixed(first + SplitMixStep * (second + 1)));
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
