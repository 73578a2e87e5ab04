#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "jet/storage/format/page.h"

namespace jet::verify {

/// A set of index entries, without the entries: how many they are and a sum of numbers made of
/// them, so that two sets can be compared in whatever order their entries come.
class IndexEntries {
  public:
    /// Key and row, or the row alone where the keys of an index are not known.
    void Add(std::span<const std::uint8_t> entry) {
        ++count_;
        sum_ += NumberOf(entry);
    }

    std::size_t Count() const { return count_; }
    bool operator==(const IndexEntries&) const = default;

  private:
    __extension__ using Wide = unsigned __int128;
    static constexpr std::uint64_t First = 0x9FB21C651E98DF25, Second = 0xD6E8FEB86659FD93;
    static constexpr std::size_t WordSize = sizeof(std::uint64_t);

    static std::uint64_t Mixed(std::uint64_t left, std::uint64_t right) {
        const Wide product = Wide{left} * right;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
    }

    /// Two entries that differ have the same number by chance alone. There are millions of them.
    static std::uint64_t NumberOf(std::span<const std::uint8_t> entry) {
        std::uint64_t state = Second ^ entry.size();
        for (; entry.size() > 2 * WordSize; entry = entry.subspan(2 * WordSize))
            state = Mixed(storage::Load<std::uint64_t>(entry, 0) ^ First,
                          storage::Load<std::uint64_t>(entry, WordSize) ^ state);
        std::uint64_t left = 0, right = 0;
        if (entry.size() >= WordSize) {  // overlapping, where there are less than two words
            left = storage::Load<std::uint64_t>(entry, 0);
            right = storage::Load<std::uint64_t>(entry, entry.size() - WordSize);
        } else {
            for (const std::uint8_t byte : entry)
                left = left << 8 | byte;
        }
        return Mixed(Mixed(left ^ First, right ^ state), Second);
    }

    std::size_t count_ = 0;
    std::uint64_t sum_ = 0;
};

}  // namespace jet::verify
