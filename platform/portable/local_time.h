#pragma once

#include <cstdint>
#include <ctime>
#include <unordered_map>

#include "platform/date_time.h"

namespace quillon {

/// Turns moments into local dates and times, with daylight saving as it was at that moment.
class LocalTime {
  public:
    DateTime Of(std::time_t moment);

  private:
    // Time zones change their offset at full quarters of an hour; asking the system for each file
    // would cost more than listing it.
    std::unordered_map<std::int64_t, std::int64_t> offsets_;
};

}  // namespace quillon
