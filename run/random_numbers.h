#pragma once

#include <cstdint>

#include "platform/date_time.h"

namespace quillon {

/// The run's one source of random numbers: evenly spread, the same after the same seed on every
/// system. Good for shuffling, not for secrets.
class RandomNumbers {
  public:
    void Seed(DateTime time);

    /// A number in [0, 1).
    double Next();

  private:
    std::uint64_t state_ = 0;
};

}  // namespace quillon
