#pragma once

#include "platform/clock.h"

namespace quillon {

/// The computer's clock in its time zone.
class SystemClock : public Clock {
  public:
    DateTime Now() const override;
    std::uint32_t Nanoseconds() const override;
};

}  // namespace quillon
