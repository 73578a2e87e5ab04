#include "platform/portable/system_clock.h"

#include <ctime>

#include "platform/portable/local_time.h"

namespace quillon {

DateTime SystemClock::Now() const {
    return LocalTime{}.Of(std::time(nullptr));
}

}  // namespace quillon
