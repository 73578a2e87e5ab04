#pragma once

#include <cstdint>

#include "platform/date_time.h"

namespace quillon {

/// The run's one source of random numbers: evenly spread, the same after the same seed on every
/// system. Good for shuffling, not for secrets.
class RandomNumbers {
  public:
    /// Two seeds a nanosecond apart give unrelated numbers.
    void Seed(DateTime time, std::uint32_t nanoseconds = 0);

    /// A number in [0, 1).
    double Next();

  private:
    std::uint64_t state_ = 0;
};

}  // namespace quillon
