// The time of day that the program is told, so that equal runs write equal dates.

#include <ctime>
#include <sys/time.h>

#include "tests/faults/preload/fault_plan.h"
#include "tests/faults/preload/next_call.h"

using namespace quillon::faults;  // NOLINT(google-build-using-namespace)

// The names are the C library's.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

int clock_gettime(clockid_t clock, timespec* now) noexcept {
    static const auto next = Next<int(clockid_t, timespec*)>("clock_gettime");
    if (clock != CLOCK_REALTIME || ToldTime() == 0) return next(clock, now);
    *now = {.tv_sec = static_cast<time_t>(ToldTime()), .tv_nsec = 0};
    return 0;
}

time_t time(time_t* now) noexcept {
    timespec told{};
    clock_gettime(CLOCK_REALTIME, &told);
    if (now != nullptr) *now = told.tv_sec;
    return told.tv_sec;
}

}  // extern "C"
// NOLINTEND(readability-identifier-naming)
