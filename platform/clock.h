#pragma once

#include "platform/date_time.h"

namespace quillon {

class Clock {
  public:
    virtual ~Clock() = default;
    /// The present local date and time, to the second.
    virtual DateTime Now() const = 0;
};

}  // namespace quillon
