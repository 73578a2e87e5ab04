#include <gtest/gtest.h>

#include "platform/database.h"
#include "platform/failure.h"
#include "tests/support/fake_database.h"

namespace quillon {
namespace {

fakes::FakeRecordSet RowOf(const Value& value) {
    return fakes::FakeRecordSet({{"F"}, {{value}}});
}

TEST(RecordSetText, SpellsEveryKindOfValue) {
    EXPECT_EQ(RowOf(Null{}).Text("F"), "");
    EXPECT_EQ(RowOf(std::string("Nina")).Text("F"), "Nina");
    EXPECT_EQ(RowOf(true).Text("F"), "True");
    EXPECT_EQ(RowOf(false).Text("F"), "False");
    EXPECT_EQ(RowOf(std::int64_t{-7}).Text("F"), "-7");
    EXPECT_EQ(RowOf(0.1).Text("F"), "0.1");
    EXPECT_EQ(RowOf(3.0).Text("F"), "3");
    EXPECT_EQ(RowOf(-0.0).Text("F"), "0");
    EXPECT_EQ(RowOf(1e20).Text("F"), "1E+20");
    EXPECT_EQ(RowOf(MakeDateTime(2026, 11, 15, 5, 38, 55)).Text("F"), "11/15/2026 5:38:55 AM");
}

TEST(RecordSetInteger, ReadsEveryKindOfValue) {
    EXPECT_EQ(RowOf(Null{}).Integer("F"), 0);
    EXPECT_EQ(RowOf(std::int64_t{70000}).Integer("F"), 70000);
    EXPECT_EQ(RowOf(true).Integer("F"), -1);
    EXPECT_EQ(RowOf(2.5).Integer("F"), 2);
    EXPECT_EQ(RowOf(std::string(" 12 ")).Integer("F"), 12);
    EXPECT_EQ(RowOf(MakeDateTime(1900, 1, 1)).Integer("F"), 2);
}

TEST(RecordSetInteger, RefusesWhatIsNoWholeNumber) {
    try {
        RowOf(std::string("abc")).Integer("F");
        FAIL() << "a text that is no number was read";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), FailureNumber::TypeMismatch);
        EXPECT_STREQ(failure.what(), "Type mismatch: F");
    }
    try {
        RowOf(1e30).Integer("F");
        FAIL() << "a number beyond 64 bits was read";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), FailureNumber::Overflow);
    }
}

}  // namespace
}  // namespace quillon
