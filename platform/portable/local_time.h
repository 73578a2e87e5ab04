#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <unordered_map>

#include "platform/date_time.h"

namespace quillon {

/// Seconds by which local time is ahead at a moment, as the system says. Implemented in
/// platform/posix and platform/windows.
std::int64_t SecondsAhead(std::time_t moment);

/// Turns moments into local dates and times, with daylight saving as it was at that moment.
class LocalTime {
  public:
    DateTime Of(std::time_t moment);

    /// The other way round. Of a time that was twice, when clocks were set back, either moment.
    std::time_t MomentOf(DateTime local);

  private:
    std::int64_t OffsetAt(std::int64_t moment);

    // Asking the system for each file would cost more than listing it. Most days have one offset;
    // on the others it changes at a full quarter of an hour.
    std::unordered_map<std::int64_t, std::optional<std::int64_t>> ofDays_;
    std::unordered_map<std::int64_t, std::int64_t> ofQuarterHours_;
};

}  // namespace quillon
