#pragma once

#include <cstdint>

#include "platform/date_time.h"

namespace quillon {

class Clock {
  public:
    virtual ~Clock() = default;
    /// The present local date and time, to the second.
    virtual DateTime Now() const = 0;
    /// How much of the present second has gone; 0 where the clock is no finer than that.
    virtual std::uint32_t Nanoseconds() const { return 0; }
};

}  // namespace quillon
