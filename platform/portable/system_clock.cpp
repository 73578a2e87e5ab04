#include "platform/portable/system_clock.h"

#include <chrono>
#include <ctime>

namespace quillon {

DateTime SystemClock::Now() const {
    return localTime_.Of(std::time(nullptr));
}

std::uint32_t SystemClock::Nanoseconds() const {
    using namespace std::chrono;
    const auto now = system_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(duration_cast<nanoseconds>(now % seconds(1)).count());
}

}  // namespace quillon
