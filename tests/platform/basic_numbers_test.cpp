#include <gtest/gtest.h>
#include <limits>
#include <ostream>

#include "platform/basic_text.h"
#include "platform/failure.h"

namespace quillon {
namespace {

template <typename Action>
FailureNumber NumberOfFailure(Action action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.Number();
    }
    return FailureNumber{};
}

struct NumberCase {
    const char* text;
    std::optional<double> number;
};

std::ostream& operator<<(std::ostream& stream, const NumberCase& wanted) {
    return stream << '"' << wanted.text << '"';
}

class ToNumberTable : public testing::TestWithParam<NumberCase> {};

TEST_P(ToNumberTable, ReadsAsTheRuntimeDoes) {
    EXPECT_EQ(ToNumber(GetParam().text), GetParam().number);
    EXPECT_EQ(IsNumeric(GetParam().text), GetParam().number.has_value());
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, ToNumberTable,
    testing::Values(NumberCase{"0", 0}, NumberCase{"5", 5}, NumberCase{" 5\t", 5},
                    NumberCase{"007", 7}, NumberCase{"-5", -5}, NumberCase{"+5", 5},
                    NumberCase{"- 5", -5}, NumberCase{"5-", -5}, NumberCase{"5+", 5},
                    NumberCase{"(5)", -5}, NumberCase{"( 5 )", -5}, NumberCase{"$5", 5},
                    NumberCase{"-$5", -5}, NumberCase{"$-5", -5}, NumberCase{"5$", 5},
                    NumberCase{"($5)", -5}, NumberCase{"1,000", 1000}, NumberCase{"1,2,3", 123},
                    NumberCase{"1,", 1}, NumberCase{"1.5", 1.5}, NumberCase{".5", 0.5},
                    NumberCase{"5.", 5}, NumberCase{"1,000.25", 1000.25}, NumberCase{"1e3", 1000},
                    NumberCase{"1E+3", 1000}, NumberCase{"1d3", 1000}, NumberCase{"25D-1", 2.5},
                    NumberCase{"&HFF", 255}, NumberCase{"&h1f", 31}, NumberCase{"&O17", 15},
                    NumberCase{"&17", 15}, NumberCase{" &HA ", 10}, NumberCase{"1e-400", 0},
                    NumberCase{"0e999", 0}));

INSTANTIATE_TEST_SUITE_P(
    Others, ToNumberTable,
    testing::Values(NumberCase{"", {}}, NumberCase{" ", {}}, NumberCase{"abc", {}},
                    NumberCase{"1a", {}}, NumberCase{"-", {}}, NumberCase{".", {}},
                    NumberCase{"$", {}}, NumberCase{"()", {}}, NumberCase{"(5", {}},
                    NumberCase{"5)", {}}, NumberCase{"-(5)", {}}, NumberCase{"-5-", {}},
                    NumberCase{"--5", {}}, NumberCase{"$$5", {}}, NumberCase{",5", {}},
                    NumberCase{"1.2.3", {}}, NumberCase{"1.2,3", {}}, NumberCase{"1 000", {}},
                    NumberCase{"1e", {}}, NumberCase{"1e+", {}}, NumberCase{"e5", {}},
                    NumberCase{"1e400", {}}, NumberCase{"&H", {}}, NumberCase{"&HG", {}},
                    NumberCase{"&", {}}, NumberCase{"&8", {}}, NumberCase{"-&H1", {}},
                    NumberCase{"&H-1", {}}, NumberCase{"&H10000000000000000", {}},
                    NumberCase{"True", {}}, NumberCase{"5%", {}}, NumberCase{"inf", {}},
                    NumberCase{"nan", {}}, NumberCase{"0x10", {}}, NumberCase{"５", {}}));

TEST(ToNumber, TellsTooLargeFromTooSmallByTheValue) {
    EXPECT_EQ(ToNumber(std::string("0.") + std::string(400, '0') + "1"), 0.0);
    EXPECT_EQ(ToNumber(std::string(500, '9') + "e-10"), std::nullopt);
    EXPECT_EQ(ToNumber("1e-99999999999999999999"), 0.0);
    EXPECT_EQ(ToNumber("1e99999999999999999999"), std::nullopt);
}

TEST(ToInteger, RoundsHalvesToTheEvenNeighbour) {
    EXPECT_EQ(ToInteger("0.5"), 0);
    EXPECT_EQ(ToInteger("1.5"), 2);
    EXPECT_EQ(ToInteger("2.5"), 2);
    EXPECT_EQ(ToInteger("-1.5"), -2);
    EXPECT_EQ(ToInteger("-2.5"), -2);
    EXPECT_EQ(ToInteger(3.4999), 3);
}

TEST(ToInteger, HoldsSixteenBits) {
    EXPECT_EQ(ToInteger("32767"), 32767);
    EXPECT_EQ(ToInteger("-32768"), -32768);
    EXPECT_EQ(ToInteger("32767.4"), 32767);
    EXPECT_EQ(ToInteger("-32768.5"), -32768);
    for (const char* const text : {"32768", "32767.5", "-32769", "70000", "1e400", "&H10000"})
        EXPECT_EQ(NumberOfFailure([&] { ToInteger(text); }), FailureNumber::Overflow) << text;
    EXPECT_EQ(NumberOfFailure([] { ToInteger(std::numeric_limits<double>::quiet_NaN()); }),
              FailureNumber::Overflow);
}

TEST(ToInteger, ReadsTheTopBitOfBitFormsAsTheSign) {
    EXPECT_EQ(ToInteger("&HFFFF"), -1);
    EXPECT_EQ(ToInteger("&H8000"), -32768);
    EXPECT_EQ(ToInteger("&H7FFF"), 32767);
    EXPECT_EQ(ToLong("&HFFFF"), 65535);
    EXPECT_EQ(ToLong("&HFFFFFFFF"), -1);
}

TEST(ToInteger, RefusesWhatIsNoNumber) {
    for (const char* const text : {"", "abc", "True", "1 2"})
        EXPECT_EQ(NumberOfFailure([&] { ToInteger(text); }), FailureNumber::TypeMismatch) << text;
}

TEST(ToLong, HoldsThirtyTwoBits) {
    EXPECT_EQ(ToLong("2147483647"), 2147483647);
    EXPECT_EQ(ToLong("-2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(NumberOfFailure([] { ToLong("2147483648"); }), FailureNumber::Overflow);
    EXPECT_EQ(NumberOfFailure([] { ToLong("x"); }), FailureNumber::TypeMismatch);
}

TEST(ToBoolean, ReadsWordsAndNumbers) {
    for (const char* const text : {"True", "TRUE", "true", "#TRUE#", "1", "-1", "0.4", "&H1"})
        EXPECT_TRUE(ToBoolean(text)) << text;
    for (const char* const text : {"False", "FALSE", "#false#", "0", "-0", " 0 ", "0.0"})
        EXPECT_FALSE(ToBoolean(text)) << text;
}

TEST(ToBoolean, RefusesOtherTexts) {
    for (const char* const text : {"", "yes", "no", " True", "Wahr", "on"})
        EXPECT_EQ(NumberOfFailure([&] { ToBoolean(text); }), FailureNumber::TypeMismatch) << text;
}

}  // namespace
}  // namespace quillon
