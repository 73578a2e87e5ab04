#include "jet/dialect/date_text.h"

#include <gtest/gtest.h>

namespace jet::dialect {

namespace {

TEST(ParseDate, ReadsTheFormsThatPeopleWrite) {
    EXPECT_EQ(ParseDate("12/30/1899"), 0);
    EXPECT_EQ(ParseDate("1/1/1900"), 2);
    EXPECT_EQ(ParseDate("11/15/2026 6:00:00 AM"), 46341.25);
    EXPECT_EQ(ParseDate("2026-11-15 18:00"), 46341.75);
    EXPECT_EQ(ParseDate("2026-11-15T18:00:00"), 46341.75);
    EXPECT_EQ(ParseDate("12:00 AM"), 0);
    EXPECT_EQ(ParseDate("12:00 PM"), 0.5);
    EXPECT_EQ(ParseDate("31/1/26"), ParseDate("1/31/2026"));
    EXPECT_EQ(ParseDate("1/1/99"), ParseDate("1/1/1999"));
}

TEST(ParseDate, CountsTheTimeForwardBeforeTheFirstDay) {
    EXPECT_EQ(ParseDate("12/29/1899 6:00"), -1.25);
    EXPECT_EQ(DateText(-1.25), "12/29/1899 6:00:00 AM");
}

TEST(ParseDate, RefusesWhatIsNoDate) {
    for (const char* text : {"", "x", "2/30/2026", "1/2", "25:00", "1:60", "13:00 PM", "1/2/2026 x",
                             "1/2/99999", "0/1/2026", "1/2/2026 3"})
        EXPECT_FALSE(ParseDate(text)) << text;
}

TEST(DateText, LeavesOutWhatIsNotThere) {
    EXPECT_EQ(DateText(46341), "11/15/2026");
    EXPECT_EQ(DateText(0.5), "12:00:00 PM");
    EXPECT_EQ(DateText(0), "12:00:00 AM");
    EXPECT_EQ(DateText(46341.99999999), "11/16/2026");
}

TEST(DateText, IsReadBackUnchanged) {
    for (double days = -3000.25; days < 80000; days += 1234.56789) {
        const std::string text = DateText(days);
        const auto read = ParseDate(text);
        ASSERT_TRUE(read) << text;
        EXPECT_EQ(DateText(*read), text);
    }
}

}  // namespace

}  // namespace jet::dialect
