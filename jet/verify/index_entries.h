#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "jet/storage/format/fingerprint.h"

namespace jet::verify {

/// A set of index entries, without the entries: how many they are and a sum of their fingerprints,
/// so that two sets can be compared in whatever order their entries come.
class IndexEntries {
  public:
    /// Key and row, or the row alone where the keys of an index are not known.
    void Add(std::span<const std::uint8_t> entry) {
        ++count_;
        sum_ += storage::Fingerprint(entry);
    }

    std::size_t Count() const { return count_; }
    bool operator==(const IndexEntries&) const = default;

  private:
    std::size_t count_ = 0;
    std::uint64_t sum_ = 0;
};

}  // namespace jet::verify
