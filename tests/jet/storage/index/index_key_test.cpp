#include "jet/storage/index/index_key.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "jet/error.h"
#include "jet/storage/format/values.h"
#include "tests/jet/storage/index/samples.h"
#include "tests/outside/shared_folder.h"

namespace jet::storage {
namespace {

std::string Hex(std::span<const std::uint8_t> bytes) {
    std::string digits;
    for (const std::uint8_t byte : bytes) {
        digits.push_back("0123456789abcdef"[byte >> 4]);
        digits.push_back("0123456789abcdef"[byte & 15]);
    }
    return digits;
}

std::string TextKeyOf(std::u16string_view text) {
    Bytes key;
    AppendTextKey(key, text);
    return Hex(key);
}

std::string KeyOf(const Value& value, ColumnType type, bool ascending) {
    Bytes key;
    AppendKey(key, value, type, 2, ascending);
    return Hex(key);
}

TEST(TextKey, OfAnEmptyTextHasOnlyTheTwoEndMarks) {
    EXPECT_EQ(TextKeyOf(u""), "0100");
}

TEST(TextKey, IgnoresLetterCaseAndTrailingBlanks) {
    EXPECT_EQ(TextKeyOf(u"A"), "4a0100");
    EXPECT_EQ(TextKeyOf(u"a"), "4a0100");
    EXPECT_EQ(TextKeyOf(u"a  "), "4a0100");
    EXPECT_EQ(TextKeyOf(u"1a!"), "384a090100");
}

TEST(TextKey, PutsAccentsBehindAllLetters) {
    EXPECT_EQ(TextKeyOf(u"\u00E9"), "51010e00");
    EXPECT_EQ(TextKeyOf(u"caf\u00E9"), "4d4a5351010202020e00");
}

TEST(TextKey, PutsApostropheAndHyphenLastWithTheirPosition) {
    EXPECT_EQ(TextKeyOf(u"1'1"), "383801010101800b068000");
    EXPECT_EQ(TextKeyOf(u"1-\u00E9"), "385101020e010101800b068200");
}

TEST(TextKey, ExpandsLigatures) {
    EXPECT_EQ(TextKeyOf(u"\u00DF"), "6b6b0100");
    EXPECT_EQ(TextKeyOf(u"\u00E6"), "4a510100");
}

TEST(TextKey, CountsALigatureAsTwoLettersForAHyphenBehindIt) {
    EXPECT_EQ(TextKeyOf(u"NuNuCa Nu\u00DF-Nougat-Creme"),
              "626f626f4d4a07626f6b6b62646f554a6d4d695160510101010180330682804b068200");
    EXPECT_EQ(TextKeyOf(u"\u00FE'"), "6d5701010101800f068000");
    EXPECT_EQ(TextKeyOf(u"\u00E6\u00E9-"), "4a515101020e0101018013068200");
}

TEST(TextKey, CountsALigatureAsOneForAnAccentBehindIt) {
    EXPECT_EQ(TextKeyOf(u"\u00E6\u00E7"), "4a514d01021c00");
}

TEST(TextKey, StopsAfter255Units) {
    const std::u16string longest(255, u'x');
    EXPECT_EQ(TextKeyOf(longest), TextKeyOf(longest + u"y"));
    EXPECT_NE(TextKeyOf(longest), TextKeyOf(longest.substr(1)));
    // Blanks at the end of the part that counts are trailing ones.
    EXPECT_EQ(TextKeyOf(u"x" + std::u16string(254, u' ') + u"y"), TextKeyOf(u"x"));
}

TEST(IndexKey, TellsNullFromAnEmptyText) {
    EXPECT_EQ(KeyOf(Null{}, ColumnType::Text, true), "00");
    EXPECT_EQ(KeyOf(std::string(), ColumnType::Text, true), "7f0100");
    EXPECT_EQ(KeyOf(Null{}, ColumnType::Text, false), "ff");
    EXPECT_EQ(KeyOf(std::string(), ColumnType::Text, false), "80feff00");
}

TEST(IndexKey, OfNumbersIsBigEndianWithTheSignTurned) {
    EXPECT_EQ(KeyOf(std::int64_t{4813}, ColumnType::Long, false), "807fffed32");
    EXPECT_EQ(KeyOf(std::int64_t{1}, ColumnType::Integer, true), "7f8001");
    EXPECT_EQ(KeyOf(std::int64_t{200}, ColumnType::Byte, true), "7fc8");
    EXPECT_EQ(KeyOf(Currency{-1}, ColumnType::Currency, true), "7f7fffffffffffffff");
}

TEST(IndexKey, OfBinaryDataComesInGroupsOfEight) {
    const Bytes data{1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(KeyOf(data, ColumnType::Binary, true), "7f010203040506070809090000000000000001");
    EXPECT_EQ(KeyOf(data, ColumnType::Binary, false), "80fefdfcfbfaf9f8f709f6fffffffffffffffe");
}

TEST(IndexKey, BringsADecimalToTheScaleOfItsColumn) {
    const Decimal coarse{.negative = false, .magnitude = {0, 0, 0, 5}, .scale = 0};
    const Decimal fine{.negative = false, .magnitude = {0, 0, 0, 5000}, .scale = 3};
    EXPECT_EQ(KeyOf(coarse, ColumnType::Decimal, true), KeyOf(fine, ColumnType::Decimal, true));
}

TEST(IndexKey, RefusesAValueOfAnotherType) {
    EXPECT_THROW(KeyOf(std::string("x"), ColumnType::Long, true), Error);
    EXPECT_THROW(KeyOf(std::int64_t{40000}, ColumnType::Integer, true), Error);
    EXPECT_THROW(KeyOf(Bytes{1}, ColumnType::Ole, true), Error);
}

TEST(IndexKey, AscendingAndDescendingKeysOfNumbersAreInOppositeOrder) {
    const std::vector<double> ordered{-1e300, -2.5, -0.25, 0, 1e-9, 3, 1e300};
    for (std::size_t i = 1; i < ordered.size(); ++i) {
        const Value less = ordered[i - 1], more = ordered[i];
        EXPECT_LT(KeyOf(less, ColumnType::Double, true), KeyOf(more, ColumnType::Double, true));
        EXPECT_GT(KeyOf(less, ColumnType::Double, false), KeyOf(more, ColumnType::Double, false));
    }
}

TEST(CompareTexts, AgreesWithTheKeysOfRandomTexts) {
    std::mt19937 random(7);
    const std::u16string letters =
        u"aAbBzZ09 !'-_{\u00E9\u00DF\u00E6\u0301\u3042\u30A2\U0001F600"
        u"\u0001\uFFFD";
    std::uniform_int_distribution<std::size_t> letter(0, letters.size() - 1), length(0, 6);
    const auto make = [&] {
        std::u16string text(length(random), u' ');
        for (char16_t& unit : text)
            unit = letters[letter(random)];
        return text;
    };
    for (int i = 0; i < 50000; ++i) {
        const std::u16string left = make(), right = make();
        const std::string leftKey = TextKeyOf(left), rightKey = TextKeyOf(right);
        const int expected = leftKey < rightKey ? -1 : (leftKey > rightKey ? 1 : 0);
        const int order = CompareTexts(ToUtf8(left), ToUtf8(right));
        ASSERT_EQ((order > 0) - (order < 0), expected) << ToUtf8(left) << " | " << ToUtf8(right);
    }
}

TEST(CompareTexts, TakesOnlyTheFirst255UnitsOfLongTexts) {
    const std::string longest(255, 'x');
    EXPECT_EQ(CompareTexts(longest, longest + "y"), 0);
    EXPECT_LT(CompareTexts(longest.substr(1), longest + "y"), 0);
    EXPECT_EQ(CompareTexts("x" + std::string(300, ' '), "X"), 0);
}

/// The double behind the key of a Date column.
double DaysOfKey(Bytes key) {
    const bool descending = key[0] == 0x80;
    key.erase(key.begin());
    if (descending)
        for (std::uint8_t& byte : key)
            byte = static_cast<std::uint8_t>(~byte);
    const bool positive = (key[0] & 0x80) != 0;
    std::uint64_t bits = 0;
    for (const std::uint8_t byte : key)
        bits = bits << 8 | byte;
    return std::bit_cast<double>(positive ? bits ^ (1ULL << 63) : ~bits);
}

class SampleKeys : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(SampleKeys, AreMadeFromTheirValues) {
    const test::SampleIndexes samples = test::ReadSampleIndexes(GetParam());
    for (const test::SampleEntry& entry : samples.entries) {
        const test::SampleIndex& index = samples.Find(entry);
        Bytes key;
        for (std::size_t i = 0; i < entry.values.size(); ++i) {
            const test::SampleColumn& column = index.columns[i];
            Value value = entry.values[i];
            if (const Date* date = std::get_if<Date>(&value);
                date != nullptr && index.columns.size() == 1) {
                // The written value is rounded to the millisecond: take the exact one.
                const double exact = DaysOfKey(entry.key);
                EXPECT_NEAR(exact,
                            std::trunc(exact) == 0 ? std::copysign(date->days, exact) : date->days,
                            1e-8);
                value = Date{exact};
            }
            AppendKey(key, value, column.type, column.scale, column.ascending);
        }
        ASSERT_EQ(Hex(key), Hex(entry.key)) << entry.table << "." << entry.index << " row "
                                            << entry.row.page << ":" << int{entry.row.slot};
    }
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleKeys);
INSTANTIATE_TEST_SUITE_P(AllSamples, SampleKeys, testing::ValuesIn(outside::SampleDatabases()),
                         [](const auto& sample) { return test::SampleName(sample.param); });

}  // namespace
}  // namespace jet::storage
