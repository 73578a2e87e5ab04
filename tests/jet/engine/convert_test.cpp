#include "jet/engine/convert.h"

#include <gtest/gtest.h>

#include "jet/engine/decimal_text.h"
#include "jet/engine/number_text.h"
#include "jet/error.h"
#include "jet/guid_text.h"
#include "tests/jet/engine/sample_database.h"

namespace jet::engine {

namespace {

using testing::Field;
using testing::Show;

std::string Converted(ColumnType type, const Value& value) {
    return Show(ConvertToField(Field("F", type), value));
}

ErrorKind Refusal(ColumnType type, const Value& value) {
    try {
        const Value converted = ConvertToField(Field("F", type), value);
        ADD_FAILURE() << "became " << Show(converted);
    } catch (const Error& error) {
        return error.Kind();
    }
    return ErrorKind::NotSupported;
}

TEST(ConvertToField, RoundsHalvesToTheEvenNumber) {
    EXPECT_EQ(Converted(ColumnType::Integer, 0.5), "0");
    EXPECT_EQ(Converted(ColumnType::Integer, 1.5), "2");
    EXPECT_EQ(Converted(ColumnType::Integer, -2.5), "-2");
    EXPECT_EQ(Converted(ColumnType::Long, std::string("3.5")), "4");
    EXPECT_EQ(Converted(ColumnType::Integer, 32767.4), "32767");
}

TEST(ConvertToField, KeepsToTheRangeOfTheType) {
    EXPECT_EQ(Refusal(ColumnType::Integer, std::int64_t{32768}), ErrorKind::Overflow);
    EXPECT_EQ(Refusal(ColumnType::Integer, 32767.5), ErrorKind::Overflow);
    EXPECT_EQ(Refusal(ColumnType::Byte, std::int64_t{-1}), ErrorKind::Overflow);
    EXPECT_EQ(Refusal(ColumnType::Long, 3e9), ErrorKind::Overflow);
    EXPECT_EQ(Refusal(ColumnType::Single, 1e39), ErrorKind::Overflow);
    EXPECT_EQ(Refusal(ColumnType::Date, 3e6), ErrorKind::Overflow);
    EXPECT_EQ(Refusal(ColumnType::Currency, 1e15), ErrorKind::Overflow);
    for (const char* const amount : {"922337203685477.5808", "-922337203685477.5809"})
        EXPECT_EQ(Refusal(ColumnType::Currency, std::string(amount)), ErrorKind::Overflow)
            << amount;
    EXPECT_EQ(Converted(ColumnType::Currency, std::string("922337203685477.5807")),
              "$9223372036854775807");
    EXPECT_EQ(Converted(ColumnType::Currency, std::string("-922337203685477.5808")),
              "$-9223372036854775808");
}

TEST(ConvertToField, ReadsNumbersInTexts) {
    EXPECT_EQ(Converted(ColumnType::Long, std::string(" -12 ")), "-12");
    EXPECT_EQ(Converted(ColumnType::Double, std::string("1e3")), "1000");
    EXPECT_EQ(Converted(ColumnType::Currency, std::string("1.00005")), "$10000");
    for (const char* text : {"", " ", "12a", "one", "inf", "nan", "0x10", "--1"})
        EXPECT_EQ(Refusal(ColumnType::Long, std::string(text)), ErrorKind::TypeMismatch) << text;
}

TEST(ConvertToField, TurnsYesAndNoIntoMinusOneAndZero) {
    EXPECT_EQ(Converted(ColumnType::Integer, true), "-1");
    EXPECT_EQ(Converted(ColumnType::Boolean, std::int64_t{5}), "True");
    EXPECT_EQ(Converted(ColumnType::Boolean, std::string("false")), "False");
    EXPECT_EQ(Converted(ColumnType::Boolean, Null{}), "False");
    EXPECT_EQ(Refusal(ColumnType::Boolean, std::string("maybe")), ErrorKind::TypeMismatch);
}

TEST(ConvertToField, MakesDatesOfTextsAndNumbers) {
    EXPECT_EQ(Converted(ColumnType::Date, std::string("11/15/2026 5:38:55 AM")),
              "#11/15/2026 5:38:55 AM#");
    EXPECT_EQ(Converted(ColumnType::Date, std::string("2026-11-15 17:05:00")),
              "#11/15/2026 5:05:00 PM#");
    EXPECT_EQ(Converted(ColumnType::Date, std::int64_t{0}), "#12:00:00 AM#");
    EXPECT_EQ(Refusal(ColumnType::Date, std::string("13/32/2026")), ErrorKind::TypeMismatch);
}

TEST(ConvertToField, WritesValuesAsText) {
    EXPECT_EQ(Converted(ColumnType::Text, std::int64_t{7}), "7");
    EXPECT_EQ(Converted(ColumnType::Text, 0.1), "0.1");
    EXPECT_EQ(Converted(ColumnType::Memo, Date{46341}), "11/15/2026");
    EXPECT_EQ(Converted(ColumnType::Text, Null{}), "Null");
}

TEST(ConvertToField, CountsTheLengthOfATextInUtf16Units) {
    const ColumnDefinition column = testing::Text("F", 2);
    EXPECT_EQ(Show(ConvertToField(column, std::string("\xF0\x9F\x8E\xB5"))), "\xF0\x9F\x8E\xB5");
    EXPECT_EQ(Show(ConvertToField(column, std::string("\xC3\xA4\xC3\xA4"))), "\xC3\xA4\xC3\xA4");
    EXPECT_THROW(ConvertToField(column, std::string("\xF0\x9F\x8E\xB5x")), Error);
}

TEST(ConvertToField, FitsDecimalsToTheirScale) {
    ColumnDefinition column = Field("F", ColumnType::Decimal);
    column.precision = 5;
    column.scale = 2;
    EXPECT_EQ(Show(ConvertToField(column, 12.345)), "1234/2");
    EXPECT_EQ(Show(ConvertToField(column, std::string("-0.015"))), "-2/2");
    EXPECT_EQ(Show(ConvertToField(column, std::int64_t{999})), "99900/2");
    EXPECT_THROW(ConvertToField(column, std::int64_t{1000}), Error);
}

TEST(DecimalText, IsReadBackUnchanged) {
    for (const char* text : {"0", "-1", "12.50", "0.05", "79228162514264337593543950335"}) {
        const std::string whole = text;
        const std::size_t point = whole.find('.');
        const auto scale =
            static_cast<std::uint8_t>(point == std::string::npos ? 0 : whole.size() - point - 1);
        const auto decimal = ParseDecimal(text, 0, scale);
        ASSERT_TRUE(decimal) << text;
        EXPECT_EQ(DecimalText(*decimal), text);
    }
    EXPECT_FALSE(ParseDecimal("1e5", 0, 0));
    EXPECT_FALSE(ParseDecimal("", 0, 0));
    EXPECT_FALSE(ParseDecimal("999999999999999999999999999999999999999", 0, 0));
}

TEST(GuidText, IsReadBackUnchanged) {
    const std::string text = "{00112233-4455-6677-8899-AABBCCDDEEFF}";
    const auto guid = ParseGuid(text);
    ASSERT_TRUE(guid);
    EXPECT_EQ(GuidText(*guid), text);
    EXPECT_FALSE(ParseGuid("{00112233-4455-6677-8899-AABBCCDDEEF}"));
    EXPECT_FALSE(ParseGuid("{00112233-4455-6677-8899_AABBCCDDEEFF}"));
}

TEST(NumberText, IsTheShortestThatReadsTheSame) {
    EXPECT_EQ(NumberText(5), "5");
    EXPECT_EQ(NumberText(-0.1), "-0.1");
    EXPECT_EQ(NumberText(1e20), "1E+20");
}

}  // namespace

}  // namespace jet::engine
