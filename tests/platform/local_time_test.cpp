#include "platform/portable/local_time.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "platform/portable/system_clock.h"

namespace quillon {
namespace {

/// Puts this process into a time zone for a while.
class TimeZone {
  public:
    explicit TimeZone(const char* name) {
        if (const char* const old = std::getenv("TZ")) old_ = old;
        setenv("TZ", name, 1);
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
    ~TimeZone() {
        old_ ? setenv("TZ", old_->c_str(), 1) : unsetenv("TZ");
        tzset();
    }

  private:
    std::optional<std::string> old_;
};

std::string TextOf(LocalTime& localTime, std::time_t moment) {
    return SortableDateTimeText(localTime.Of(moment));
}

TEST(LocalTime, FollowsDaylightSaving) {
    const TimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    LocalTime time;
    EXPECT_EQ(TextOf(time, 1774745999), "2026-03-29 01:59:59");
    EXPECT_EQ(TextOf(time, 1774746000), "2026-03-29 03:00:00");
    EXPECT_EQ(TextOf(time, 1792889999), "2026-10-25 02:59:59");
    EXPECT_EQ(TextOf(time, 1792890000), "2026-10-25 02:00:00");
}

TEST(LocalTime, KnowsOffsetsOfHalfHours) {
    const TimeZone zone("IST-5:30");
    LocalTime time;
    EXPECT_EQ(TextOf(time, 0), "1970-01-01 05:30:00");
    EXPECT_EQ(TextOf(time, -1), "1970-01-01 05:29:59");
}

TEST(LocalTime, FindsTheMomentOfALocalTime) {
    const TimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    LocalTime time;
    for (const std::time_t moment : {1500000000, 1774745999, 1774746000, 1792886399, 1792890000, 0})
        EXPECT_EQ(TextOf(time, time.MomentOf(time.Of(moment))), TextOf(time, moment));
    EXPECT_EQ(time.MomentOf(time.Of(1500000001)), 1500000001);
    EXPECT_EQ(time.MomentOf(time.Of(-2209161601)), -2209161601);
}

TEST(LocalTime, ReadsMomentsBeforeTheZeroDate) {
    const TimeZone zone("UTC0");
    LocalTime time;
    EXPECT_EQ(TextOf(time, -2209161600), "1899-12-30 00:00:00");
    EXPECT_EQ(TextOf(time, -2209161601), "1899-12-29 23:59:59");
    EXPECT_EQ(TextOf(time, -4000000000), "1843-03-31 16:53:20");
}

TEST(LocalTime, AgreesWithTheSystemInEverySecondOfAnHour) {
    const TimeZone zone("<+1030>-10:30<+11>-11,M10.1.0,M4.1.0");
    LocalTime time;
    for (std::time_t moment = 1775314800; moment < 1775314800 + 7200; moment += 7) {
        std::tm local{};
        localtime_r(&moment, &local);
        char text[32];
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
        ASSERT_EQ(TextOf(time, moment), text);
    }
}

TEST(SystemClock, ShowsTheLocalTime) {
    const TimeZone zone("XYZ-3");
    LocalTime time;
    const DateTime before = time.Of(std::time(nullptr));
    const DateTime now = SystemClock().Now();
    const DateTime after = time.Of(std::time(nullptr));
    EXPECT_LE(before, now);
    EXPECT_LE(now, after);
}

TEST(SystemClock, TellsPartsOfASecond) {
    const SystemClock clock;
    const std::uint32_t first = clock.Nanoseconds();
    bool isAnother = false;
    for (int i = 0; i < 1'000'000 && !isAnother; ++i)
        isAnother = clock.Nanoseconds() != first;
    EXPECT_TRUE(isAnother);
    EXPECT_LT(clock.Nanoseconds(), 1'000'000'000U);
}

}  // namespace
}  // namespace quillon
