#include "platform/portable/local_time.h"

#include <gtest/gtest.h>

#include "platform/windows/system_headers.h"

namespace quillon {
namespace {

/// CTest runs it in a zone that has daylight saving, north of the equator.
TEST(SecondsAheadOnWindows, AreThoseOfThenWhateverTheSeasonIsNow) {
    TIME_ZONE_INFORMATION zone{};
    ASSERT_NE(GetTimeZoneInformation(&zone), TIME_ZONE_ID_INVALID);
    const std::int64_t standard = -60 * std::int64_t{zone.Bias + zone.StandardBias};
    const std::int64_t daylight = -60 * std::int64_t{zone.Bias + zone.DaylightBias};
    const bool hasDaylight = zone.DaylightDate.wMonth != 0;
    const std::time_t january = 1705320000, july = 1721044800;  // of 2024
    EXPECT_EQ(SecondsAhead(january), standard);
    EXPECT_EQ(SecondsAhead(july), hasDaylight ? daylight : standard);
}

}  // namespace
}  // namespace quillon
