#include "app/value_text.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace quillon {
namespace {

TEST(ValueText, TellsNullAndTheEmptyTextApart) {
    EXPECT_EQ(ValueText(jet::Null{}), "<null>");
    EXPECT_EQ(ValueText(std::string()), "");
    EXPECT_EQ(JsonValue(jet::Null{}), "null");
    EXPECT_EQ(JsonValue(std::string()), "\"\"");
}

TEST(ValueText, ShowsNumbersWithAllTheirDigits) {
    EXPECT_EQ(ValueText(std::int64_t{-32768}), "-32768");
    EXPECT_EQ(ValueText(0.1), "0.1");
    EXPECT_EQ(JsonValue(1e300), "1e+300");
    EXPECT_EQ(JsonValue(std::int64_t{7}), "7");
    EXPECT_EQ(JsonValue(std::numeric_limits<double>::infinity()), "null");
    EXPECT_EQ(JsonValue(true), "true");
}

TEST(ValueText, ShowsDatesInSortableForm) {
    EXPECT_EQ(ValueText(jet::Date{0}), "1899-12-30T00:00:00");
    EXPECT_EQ(ValueText(jet::Date{38751 + 8.0 / 24}), "2006-02-03T08:00:00");
    EXPECT_EQ(ValueText(jet::Date{-1.25}), "1899-12-29T06:00:00") << "the fraction counts forward";
    EXPECT_EQ(ValueText(jet::Date{38751 + 0.5 / 86'400}), "2006-02-03T00:00:00.500");
    EXPECT_EQ(JsonValue(jet::Date{38751}), "\"2006-02-03T00:00:00\"");
}

TEST(ValueText, RoundsTheLastInstantOfADayIntoTheNext) {
    EXPECT_EQ(ValueText(jet::Date{38751.9999999999}), "2006-02-04T00:00:00");
}

TEST(ValueText, ShowsADateOutsideTheCalendarAsItsNumber) {
    EXPECT_EQ(ValueText(jet::Date{1e9}), "1000000000");
    EXPECT_EQ(ValueText(jet::Date{std::nan("")}), "nan");
}

TEST(ValueText, ShowsCurrencyWithFourPlaces) {
    EXPECT_EQ(ValueText(jet::Currency{35000}), "3.5000");
    EXPECT_EQ(ValueText(jet::Currency{-1}), "-0.0001");
    EXPECT_EQ(ValueText(jet::Currency{std::numeric_limits<std::int64_t>::min()}),
              "-922337203685477.5808");
    EXPECT_EQ(JsonValue(jet::Currency{35000}), "\"3.5000\"");
}

TEST(ValueText, ShowsDecimalsWithTheirScale) {
    EXPECT_EQ(ValueText(jet::Decimal{}), "0");
    EXPECT_EQ(ValueText(jet::Decimal{true, {0, 0, 0, 12345}, 3}), "-12.345");
    EXPECT_EQ(ValueText(jet::Decimal{false, {0, 0, 0, 5}, 2}), "0.05");
    EXPECT_EQ(ValueText(jet::Decimal{false, {0, 0, 1, 0}, 0}), "4294967296");
    EXPECT_EQ(ValueText(jet::Decimal{false, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}, 0}),
              "340282366920938463463374607431768211455");
}

TEST(ValueText, ShowsGuidsAndBytes) {
    EXPECT_EQ(ValueText(jet::Guid{{0xBC, 0x96, 0x30, 0x3A, 0x53, 0xB8, 0x47, 0x4D, 0xAC, 0xC1, 0xD2,
                                   0xEB, 0x8D, 0x0B, 0x09, 0xD5}}),
              "{BC96303A-53B8-474D-ACC1-D2EB8D0B09D5}");
    EXPECT_EQ(ValueText(jet::Bytes{}), "");
    EXPECT_EQ(ValueText(jet::Bytes{'M'}), "TQ==");
    EXPECT_EQ(ValueText(jet::Bytes{'M', 'a'}), "TWE=");
    EXPECT_EQ(ValueText(jet::Bytes{'M', 'a', 'n'}), "TWFu");
    EXPECT_EQ(ValueText(jet::Bytes{0xFF, 0xEF, 0xBE, 0x00}), "/+++AA==");
}

TEST(JsonString, EscapesWhatJsonDoesNotAllow) {
    EXPECT_EQ(JsonString("a\"b\\c"), R"("a\"b\\c")");
    EXPECT_EQ(JsonString("\r\n\t\x01\x1F"), R"("\r\n\t\u0001\u001f")");
    EXPECT_EQ(JsonString("Sängerin 音楽"), "\"Sängerin 音楽\"");
}

TEST(JsonString, WritesALoneSurrogateAsItsEscape) {
    EXPECT_EQ(JsonString("a\xED\xA0\x80z"), R"("a\ud800z")");
    EXPECT_EQ(JsonString("\xED\xBF\xBF"), R"("\udfff")");
    EXPECT_EQ(JsonString("\xED\x9F\xBF"), "\"\xED\x9F\xBF\"") << "the last code before them";
}

}  // namespace
}  // namespace quillon
