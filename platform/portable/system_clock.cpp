#include "platform/portable/system_clock.h"

#include <chrono>
#include <ctime>

namespace quillon {

DateTime SystemClock::Now() const {
    return localTime_.Of(std::time(nullptr));
}

std::uint32_t SystemClock::Nanoseconds() const {
    using std::chrono::nanoseconds, std::chrono::seconds;
    const auto now = std::chrono::system_clock::now().time_since_epoch() % seconds(1);
    return static_cast<std::uint32_t>(std::chrono::duration_cast<nanoseconds>(now).count());
}

}  // namespace quillon
