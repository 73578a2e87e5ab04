#include "database/sql.h"

#include <gtest/gtest.h>

#include "platform/failure.h"

namespace quillon {
namespace {

TEST(Quoted, PutsDoubleQuotesAroundAValue) {
    EXPECT_EQ(Quoted("Blue"), "\"Blue\"");
    EXPECT_EQ(Quoted(""), "\"\"");
    EXPECT_EQ(Quoted("Rock 'n' 100% [live] #1"), "\"Rock 'n' 100% [live] #1\"");
}

TEST(Quoted, RefusesAValueThatHoldsADoubleQuote) {
    EXPECT_THROW(Quoted("12\" Mixes"), Failure);
    EXPECT_THROW(Quoted("x\" OR \"\"=\""), Failure);
    try {
        Quoted("a\"b");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), FailureNumber::Database);
        EXPECT_STREQ(failure.what(), "Syntax error (missing operator) in query expression: a\"b");
    }
}

TEST(FilterQuoted, DoublesApostrophesInsideItsSingleQuotes) {
    EXPECT_EQ(FilterQuoted("Blue"), "'Blue'");
    EXPECT_EQ(FilterQuoted("Rock 'n' Roll"), "'Rock ''n'' Roll'");
    EXPECT_EQ(FilterQuoted("12\" Mixes"), "'12\" Mixes'");
}

}  // namespace
}  // namespace quillon
