#include "jet/storage/format/values.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "jet/error.h"
#include "jet/storage/index/index_key.h"

namespace jet::storage {
namespace {

using namespace std::string_literals;

TEST(Utf16, SurvivesTheWayThroughUtf8) {
    EXPECT_EQ(ToUtf8(u"Beyonc\u00E9 \u3042 \U0001F600"),
              "Beyonc\xC3\xA9 \xE3\x81\x82 \xF0\x9F\x98\x80");
    EXPECT_EQ(ToUtf16("Beyonc\xC3\xA9 \xF0\x9F\x98\x80"), u"Beyonc\u00E9 \U0001F600");
    EXPECT_EQ(ToUtf16("a\0b"s), u"a\0b"s);
}

TEST(Utf16, KeepsEveryUnitEvenALoneSurrogate) {
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        std::u16string text(random() % 5, u' ');
        for (char16_t& unit : text)
            unit = static_cast<char16_t>(random() % 3 == 0 ? 0xD800 + random() % 0x800
                                                           : random() % 0x10000);
        ASSERT_EQ(ToUtf16(ToUtf8(text)), text);
    }
    EXPECT_EQ(ToUtf8(std::u16string(1, char16_t{0xD800})), "\xED\xA0\x80");
}

TEST(Utf16, ReplacesBytesThatAreNoUtf8) {
    EXPECT_EQ(ToUtf16("a\xFFz"), u"a\uFFFDz");
    EXPECT_EQ(ToUtf16("a\xC3"), u"a\uFFFD");                              // cut off
    EXPECT_EQ(ToUtf16("\xC0\x80"), u"\uFFFD\uFFFD");                      // longer than need be
    EXPECT_EQ(ToUtf16("\xE2\x28\xA1"), u"\uFFFD(\uFFFD");                 // no continuation
    EXPECT_EQ(ToUtf16("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD");  // beyond U+10FFFF
}

Bytes BytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

TEST(TextCoding, CompressesOnlyWhereColumnAndTextAllowIt) {
    EXPECT_EQ(EncodeText(u"abc", true, false), BytesOf("\xFF\xFE"
                                                       "abc"));
    EXPECT_EQ(EncodeText(u"abc", false, false), BytesOf("a\0b\0c\0"s));
    EXPECT_EQ(EncodeText(u"ab", true, false), BytesOf("a\0b\0"s));
    EXPECT_EQ(EncodeText(u"ab\u0153", true, false), BytesOf("a\0b\0\x53\x01"s));
    EXPECT_EQ(EncodeText(std::u16string(u"ab\0", 3), true, false), BytesOf("a\0b\0\0\0"s));
    EXPECT_EQ(EncodeText(u"", true, false), Bytes{});
}

TEST(TextCoding, CompressesMemosUpTo1024Characters) {
    EXPECT_EQ(EncodeText(std::u16string(1024, u'm'), true, true).size(), 1026U);
    EXPECT_EQ(EncodeText(std::u16string(1025, u'm'), true, true).size(), 2050U);
    EXPECT_EQ(EncodeText(std::u16string(1025, u'm'), true, false).size(), 1027U);
}

TEST(TextCoding, ReadsBothFormsAndSwitchesBetweenThem) {
    EXPECT_EQ(DecodeText(BytesOf("\xFF\xFE"
                                 "abc")),
              "abc");
    EXPECT_EQ(DecodeText(BytesOf("a\0b\0"s)), "ab");
    EXPECT_EQ(DecodeText(BytesOf("\xFF\xFE"
                                 "a\xE9\0\x42\x30\0z"s)),
              "a\xC3\xA9\xE3\x81\x82z");
    EXPECT_EQ(DecodeText(Bytes{}), "");
}

TEST(TextCoding, ReadsAnythingAsSomeText) {
    EXPECT_EQ(DecodeText(BytesOf("a\0b"s)), "a");  // half a unit at the end
    EXPECT_EQ(DecodeText(BytesOf("\xFF")), "");
    EXPECT_EQ(DecodeText(BytesOf("\xFF\xFE\0\x41"s)), "");
    EXPECT_EQ(DecodeText(BytesOf("\0\0"s)), "\0"s);
}

TEST(TextCoding, KeepsATextThatBeginsWithTheMarkOfTheCompressedForm) {
    for (const std::u16string text : {u"\uFEFFab", u"\uFEFF\u3042\uFEFFz", u"\uFEFF"}) {
        EXPECT_EQ(DecodeText(EncodeText(text, false, false)), ToUtf8(text));
        EXPECT_EQ(DecodeText(EncodeText(text, true, true)), ToUtf8(text));
    }
    // Units that the compressed form cannot hold leave no other way than to drop the mark.
    EXPECT_EQ(DecodeText(EncodeText(u"\uFEFF\uFEFF\u3000", false, false)), "\xE3\x80\x80");
}

TEST(TextCoding, IsUndoneByReading) {
    std::mt19937 random(5);
    for (int i = 0; i < 5000; ++i) {
        std::u16string text(random() % 8, u' ');
        const std::uint32_t range = i % 2 == 0 ? 0x100 : 0xFEFF;
        for (char16_t& unit : text)
            unit = static_cast<char16_t>(random() % range);
        ASSERT_EQ(DecodeText(EncodeText(text, true, i % 3 == 0)), ToUtf8(text));
    }
}

/// Texts of ASCII, of Latin-1, of others, and ones that are no UTF-8.
std::vector<std::string> AwkwardTexts() {
    std::vector<std::string> texts{"",
                                   "a",
                                   "ab",
                                   "abc",
                                   "it's",
                                   "a-b c",
                                   "Caf\xC3\xA9",
                                   "\xC2\x80\xC3\xBF.",
                                   "\xC2",
                                   "\xC3(",
                                   "abc\xC2",
                                   "\xEF\xBB\xBF"
                                   "abc",
                                   "\xFF\xFE",
                                   std::string("a\0b", 3),
                                   "abc   ",
                                   "\xE3\x80\x80x",
                                   std::string(2000, 'x'),
                                   std::string(300, ' '),
                                   std::string(254, 'y') + "\xC3\xA9z",
                                   "\xF0\x9F\x8E\xB5!"};
    std::mt19937 random(8);
    for (int i = 0; i < 2000; ++i) {
        std::string& text = texts.emplace_back();
        for (std::size_t n = random() % 12; n > 0; --n)
            text += random() % 4 != 0 ? static_cast<char>('a' + random() % 26)
                                      : static_cast<char>(random());
    }
    return texts;
}

TEST(TextCoding, OfUtf8IsThatOfItsUnits) {
    for (const std::string& text : AwkwardTexts())
        for (const bool mayCompress : {false, true})
            for (const bool isMemo : {false, true}) {
                Bytes bytes{7};
                AppendText(bytes, text, mayCompress, isMemo);
                Bytes expected = EncodeText(ToUtf16(text), mayCompress, isMemo);
                expected.insert(expected.begin(), 7);
                ASSERT_EQ(bytes, expected) << text;
            }
}

TEST(TextCoding, DecodesIntoATextThatIsThere) {
    std::string reused = "what was there before";
    for (const std::string& text : AwkwardTexts()) {
        const Bytes bytes = EncodeText(ToUtf16(text), text.size() % 2 == 0, false);
        DecodeText(bytes, reused);
        ASSERT_EQ(reused, DecodeText(bytes));
        ASSERT_EQ(ToUtf16(reused), ToUtf16(ToUtf8(ToUtf16(reused))));
    }
}

TEST(TextKeys, OfUtf8AndOfStoredTextsAreThoseOfTheirUnits) {
    for (const std::string& text : AwkwardTexts()) {
        for (const bool ascending : {true, false}) {
            Bytes expected{static_cast<std::uint8_t>(ascending ? 0x7F : 0x80)};
            AppendTextKey(expected, std::u16string_view(ToUtf16(text)));
            if (!ascending) {
                std::transform(expected.begin() + 1, expected.end(), expected.begin() + 1,
                               [](std::uint8_t byte) { return static_cast<std::uint8_t>(~byte); });
                expected.push_back(0);
            }
            Bytes key, stored;
            AppendKey(key, text, ColumnType::Text, 0, ascending);
            ASSERT_EQ(key, expected) << text;
            const Bytes bytes = EncodeText(ToUtf16(text), true, false);
            if (DecodeText(bytes) != ToUtf8(ToUtf16(text))) continue;  // a byte order mark is lost
            AppendStoredKey(stored, bytes, ColumnType::Text, 0, ascending);
            ASSERT_EQ(stored, expected) << text;
        }
    }
}

TEST(Scalars, AreUndoneByReading) {
    const auto through = [](const Value& value, ColumnType type) {
        const Bytes bytes = EncodeScalar(value, type, 4);
        if (type != ColumnType::Binary) {
            EXPECT_EQ(bytes.size(), FixedSize(type));
        }
        return DecodeScalar(bytes, type, 4);
    };
    const std::vector<std::pair<ColumnType, Value>> cases{
        {ColumnType::Byte, std::int64_t{255}},
        {ColumnType::Integer, std::int64_t{-32768}},
        {ColumnType::Long, std::int64_t{-2147483648LL}},
        {ColumnType::Currency, Currency{-123456789012345}},
        {ColumnType::Single, 1.5},
        {ColumnType::Double, -1e300},
        {ColumnType::Date, Date{-1.25}},
        {ColumnType::Binary, Bytes{1, 0, 255}},
        {ColumnType::Guid, Guid{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}}},
        {ColumnType::Decimal, Decimal{true, {1, 2, 3, 4}, 4}}};
    for (const auto& [type, value] : cases)
        EXPECT_EQ(through(value, type), value);
}

TEST(Scalars, AreStoredAsTheFormatWantsThem) {
    const Guid guid{{0xBC, 0x96, 0x30, 0x3A, 0x53, 0xB8, 0x47, 0x4D, 1, 2, 3, 4, 5, 6, 7, 8}};
    EXPECT_EQ(EncodeScalar(guid, ColumnType::Guid, 0),
              (Bytes{0x3A, 0x30, 0x96, 0xBC, 0xB8, 0x53, 0x4D, 0x47, 1, 2, 3, 4, 5, 6, 7, 8}));
    const Decimal minusOne{true, {0, 0, 0, 1}, 0};
    EXPECT_EQ(EncodeScalar(minusOne, ColumnType::Decimal, 2),
              (Bytes{0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 100, 0, 0, 0}));
}

TEST(Scalars, RefuseWhatTheirFieldCannotHold) {
    EXPECT_THROW(EncodeScalar(std::int64_t{256}, ColumnType::Byte, 0), Error);
    EXPECT_THROW(EncodeScalar(std::int64_t{-1}, ColumnType::Byte, 0), Error);
    EXPECT_THROW(EncodeScalar(std::int64_t{32768}, ColumnType::Integer, 0), Error);
    EXPECT_THROW(EncodeScalar(std::int64_t{2147483648LL}, ColumnType::Long, 0), Error);
    EXPECT_THROW(EncodeScalar(1e300, ColumnType::Single, 0), Error);
    EXPECT_THROW(EncodeScalar(1.0, ColumnType::Long, 0), Error);
    EXPECT_THROW(EncodeScalar("x"s, ColumnType::Text, 0), Error);
}

TEST(Rescale, RoundsHalfAwayFromZero) {
    EXPECT_EQ(Rescale({false, {0, 0, 0, 125}, 2}, 1), (Decimal{false, {0, 0, 0, 13}, 1}));
    EXPECT_EQ(Rescale({true, {0, 0, 0, 124}, 2}, 1), (Decimal{true, {0, 0, 0, 12}, 1}));
    EXPECT_EQ(Rescale({false, {0, 0, 1, 0}, 0}, 1), (Decimal{false, {0, 0, 10, 0}, 1}));
    EXPECT_THROW(Rescale({false, {0xFFFFFFFF, 0, 0, 0}, 0}, 1), Error);
}

}  // namespace
}  // namespace jet::storage
