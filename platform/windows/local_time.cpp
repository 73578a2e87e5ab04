#include "platform/portable/local_time.h"

#include "platform/windows/windows_facts.h"

namespace quillon {
namespace {

FILETIME AsFileTime(std::int64_t steps) {
    const auto bits = static_cast<std::uint64_t>(steps);
    return {static_cast<DWORD>(bits & 0xFFFFFFFFU), static_cast<DWORD>(bits >> 32U)};
}

std::int64_t AsSteps(const FILETIME& time) {
    return static_cast<std::int64_t>((std::uint64_t{time.dwHighDateTime} << 32U) |
                                     time.dwLowDateTime);
}

}  // namespace

std::int64_t SecondsAhead(std::time_t moment) {
    constexpr std::int64_t StepsOfASecond = 10'000'000;
    const std::int64_t steps = StepsOf({moment, 0});
    const FILETIME universal = AsFileTime(steps);
    SYSTEMTIME clock{}, local{};
    FILETIME shown{};
    // Not FileTimeToLocalFileTime(), which takes the daylight saving of now for that of then.
    const bool isKnown = steps > 0 && FileTimeToSystemTime(&universal, &clock) != 0 &&
                         SystemTimeToTzSpecificLocalTime(nullptr, &clock, &local) != 0 &&
                         SystemTimeToFileTime(&local, &shown) != 0;
    return isKnown ? (AsSteps(shown) - steps) / StepsOfASecond : 0;
}

}  // namespace quillon
