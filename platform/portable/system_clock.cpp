#include "platform/portable/system_clock.h"

#include <ctime>

namespace quillon {

DateTime SystemClock::Now() const {
    return localTime_.Of(std::time(nullptr));
}

std::uint32_t SystemClock::Nanoseconds() const {
    std::timespec now{};
    std::timespec_get(&now, TIME_UTC);
    return static_cast<std::uint32_t>(now.tv_nsec);
}

}  // namespace quillon
