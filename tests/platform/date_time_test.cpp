#include "platform/date_time.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <limits>

#include "platform/failure.h"

namespace quillon {
namespace {

TEST(MakeDateTime, CountsDaysFromTheZeroDate) {
    EXPECT_EQ(MakeDateTime(1899, 12, 30).days, 0);
    EXPECT_EQ(MakeDateTime(1900, 1, 1).days, 2);
    EXPECT_EQ(MakeDateTime(1970, 1, 1).days, 25569);
    EXPECT_EQ(MakeDateTime(2000, 3, 1, 12).days, 36586.5);
}

TEST(MakeDateTime, FractionCountsForwardBelowZeroToo) {
    EXPECT_EQ(MakeDateTime(1899, 12, 29, 6).days, -1.25);
    EXPECT_EQ(SortableDateTimeText({-1.25}), "1899-12-29 06:00:00");
}

TEST(DateTimeText, IsMonthDayYearAndTwelveHours) {
    EXPECT_EQ(DateTimeText(MakeDateTime(2026, 11, 15, 5, 38, 55)), "11/15/2026 5:38:55 AM");
    EXPECT_EQ(DateTimeText(MakeDateTime(2026, 1, 2, 12, 0, 0)), "1/2/2026 12:00:00 PM");
    EXPECT_EQ(DateTimeText(MakeDateTime(2026, 1, 2, 0, 0, 1)), "1/2/2026 12:00:01 AM");
    EXPECT_EQ(DateTimeText(MakeDateTime(2026, 12, 31, 23, 59, 59)), "12/31/2026 11:59:59 PM");
}

TEST(DateTimeText, LeavesOutMidnightAndTheZeroDate) {
    EXPECT_EQ(DateTimeText(MakeDateTime(2026, 11, 15)), "11/15/2026");
    EXPECT_EQ(DateTimeText({0.5}), "12:00:00 PM");
    EXPECT_EQ(DateTimeText({}), "12:00:00 AM");
}

TEST(DateTimeText, EverySecondOfADayReadsBack) {
    for (int second = 0; second < 24 * 60 * 60; ++second) {
        const DateTime time =
            MakeDateTime(2026, 11, 15, second / 3600, second / 60 % 60, second % 60);
        char wanted[32];
        std::snprintf(wanted, sizeof wanted, "2026-11-15 %02d:%02d:%02d", second / 3600,
                      second / 60 % 60, second % 60);
        ASSERT_EQ(SortableDateTimeText(time), wanted);
    }
}

TEST(DateTimeText, RoundsUpIntoTheNextDay) {
    EXPECT_EQ(SortableDateTimeText({MakeDateTime(2026, 12, 31).days + 0.9999999}),
              "2027-01-01 00:00:00");
    EXPECT_EQ(SortableDateTimeText({-1.9999999}), "1899-12-30 00:00:00");
}

TEST(DateTimeText, RefusesWhatIsNoDate) {
    EXPECT_EQ(DateTimeText(MakeDateTime(100, 1, 1)), "1/1/0100");
    EXPECT_EQ(SortableDateTimeText(MakeDateTime(9999, 12, 31, 23, 59, 59)), "9999-12-31 23:59:59");
    for (const double days : {1e9, -1e9, 2958466.0, std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()})
        EXPECT_THROW(DateTimeText({days}), Failure) << days;
}

}  // namespace
}  // namespace quillon
