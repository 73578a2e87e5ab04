#pragma once

#include "platform/clock.h"
#include "platform/portable/local_time.h"

namespace quillon {

/// The computer's clock in its time zone.
class SystemClock : public Clock {
  public:
    DateTime Now() const override;
    std::uint32_t Nanoseconds() const override;

  private:
    mutable LocalTime localTime_;
};

}  // namespace quillon
