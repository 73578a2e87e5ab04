#include "jet/storage/index/index_tree.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "jet/error.h"
#include "jet/storage/index/index_key.h"
#include "tests/jet/storage/index/modelled_tree.h"
#include "tests/outside/density.h"

namespace jet::storage {

using test::ModelledTree;
using test::RowNumber;

namespace {

Bytes NumberKey(std::int64_t number) {
    Bytes key;
    AppendKey(key, number, ColumnType::Long, 0, true);
    return key;
}

Bytes TextKey(const std::u16string& text) {
    Bytes key{0x7F};
    AppendTextKey(key, text);
    return key;
}

TEST(IndexTree, OfNothingHoldsNothing) {
    ModelledTree model;
    EXPECT_FALSE(model.Tree().ContainsKey(NumberKey(1)));
    EXPECT_THROW(model.Tree().Remove(NumberKey(1), RowNumber(1)), Error);
    EXPECT_EQ(model.Check("empty").entries, 0U);
}

TEST(IndexTree, FillsItsPagesWhenRowsComeInOrder) {
    ModelledTree model;
    const auto count = static_cast<std::uint32_t>(30000 / outside::StepUnderSanitizers(6));
    for (std::uint32_t i = 0; i < count; ++i)
        model.Insert(NumberKey(i), RowNumber(i));
    const test::TreeShape shape = model.Check("ascending");
    EXPECT_EQ(shape.entries, count);
    // Nine bytes an entry, or less where a page leaves out what the keys begin with.
    EXPECT_LT(shape.pages.size(), count * 9 / 3616 * 11 / 10);
}

TEST(IndexTree, TakesRowsInDescendingOrder) {
    ModelledTree model;
    const auto count = static_cast<std::uint32_t>(20000 / outside::StepUnderSanitizers(6));
    for (std::uint32_t i = count; i-- > 0;)
        model.Insert(NumberKey(i), RowNumber(i));
    EXPECT_EQ(model.Check("descending").entries, count);
}

TEST(IndexTree, TellsRowsWithTheSameKeyApart) {
    ModelledTree model;
    const Bytes key = TextKey(u"Various Artists");
    for (std::uint32_t i = 0; i < 5000; ++i)
        model.Insert(key, RowNumber(i * 7919 % 5000));
    EXPECT_TRUE(model.Tree().ContainsKey(key));
    model.Check("filled");
    for (std::uint32_t i = 0; i < 5000; i += 2)
        model.Remove(key, RowNumber(i));
    EXPECT_EQ(model.Check("every other removed").entries, 2500U);
    EXPECT_THROW(model.Tree().Remove(key, RowNumber(0)), Error);
    EXPECT_THROW(model.Tree().Insert(key, RowNumber(1)), Error);
}

TEST(IndexTree, FindsAKeyOnlyAsAWhole) {
    ModelledTree model;
    const Bytes key = NumberKey(0x01020304);
    model.Insert(key, RowNumber(3));
    EXPECT_TRUE(model.Tree().ContainsKey(key));
    EXPECT_FALSE(model.Tree().ContainsKey(std::span(key).first(4)));
    Bytes longer = key;
    longer.push_back(0);
    EXPECT_FALSE(model.Tree().ContainsKey(longer));
}

TEST(IndexTree, LeavesOutACommonBeginningWhereThatSavesASplit) {
    ModelledTree model;
    const std::u16string folder = u"\\\\nas\\music\\A Rather Long Artist Name\\An Album\\";
    for (std::uint32_t i = 0; i < 2000; ++i)
        model.Insert(
            TextKey(folder + std::u16string(1 + i % 5, static_cast<char16_t>(u'a' + i % 26))),
            RowNumber(i));
    EXPECT_GT(model.Check("long prefix").compressedPages, 0U);
    // A key without the prefix, in front of all others and behind them.
    model.Insert(TextKey(u"1"), RowNumber(5000));
    model.Insert(TextKey(u"zzz"), RowNumber(5001));
    model.Check("foreign keys");
    const std::vector<ModelledTree::Entry> all(model.Entries().begin(), model.Entries().end());
    for (const auto& [key, row] : all)
        model.Remove(key, row);
    EXPECT_EQ(model.Check("all removed").levels, 1U);
}

TEST(IndexTree, RefusesAKeyThatAPageCannotHoldTwice) {
    ModelledTree model;
    EXPECT_THROW(model.Tree().Insert(Bytes(LongestKey + 1), RowNumber(1)), Error);
    model.Insert(Bytes(LongestKey, 1), RowNumber(1));
    model.Insert(Bytes(LongestKey, 2), RowNumber(2));
    model.Insert(Bytes(LongestKey, 3), RowNumber(3));
    model.Check("greatest keys");
}

TEST(IndexTree, BecomesALeafAgainWhenEmptied) {
    ModelledTree model;
    for (std::uint32_t i = 0; i < 3000; ++i)
        model.Insert(NumberKey(i), RowNumber(i));
    for (std::uint32_t i = 0; i < 3000; ++i)
        model.Remove(NumberKey(i), RowNumber(i));
    test::TreeShape shape = model.Check("emptied from the front");
    EXPECT_EQ(shape.levels, 1U);
    EXPECT_THAT(shape.pages, testing::IsEmpty());
    for (std::uint32_t i = 0; i < 3000; ++i)
        model.Insert(NumberKey(i), RowNumber(i));
    for (std::uint32_t i = 3000; i-- > 0;)
        model.Remove(NumberKey(i), RowNumber(i));
    shape = model.Check("emptied from the back");
    EXPECT_EQ(shape.levels, 1U);
}

struct RandomCase {
    const char* name;
    std::size_t shortest, longest;  // letters of a key
    std::size_t alphabet;
    int operations;
};

class RandomOperations : public testing::TestWithParam<RandomCase> {};

TEST_P(RandomOperations, KeepTheTreeEqualToItsModel) {
    const RandomCase& size = GetParam();
    std::mt19937 random(42);
    ModelledTree model;
    std::uniform_int_distribution<std::size_t> length(size.shortest, size.longest);
    std::uniform_int_distribution<std::size_t> letter(0, size.alphabet - 1);
    const auto makeKey = [&] {
        Bytes key{0x7F};
        for (std::size_t n = length(random); n > 0; --n)
            key.push_back(static_cast<std::uint8_t>(0x40 + letter(random)));
        key.insert(key.end(), {1, 0});
        return key;
    };
    std::vector<ModelledTree::Entry> present;
    std::size_t deepest = 0;
    for (int i = 0; i < size.operations; ++i) {
        // Phases of growing and of shrinking, down to nothing.
        const bool growing = i / (size.operations / 4) % 2 == 0;
        if (present.empty() || random() % 10 < (growing ? 8U : 1U)) {
            ModelledTree::Entry entry{makeKey(), RowNumber(static_cast<std::uint32_t>(i))};
            model.Insert(entry.first, entry.second);
            present.push_back(std::move(entry));
        } else {
            std::swap(present[random() % present.size()], present.back());
            model.Remove(present.back().first, present.back().second);
            present.pop_back();
        }
        if (i % (size.operations / 16) == 0)
            deepest = std::max(deepest, model.Check(size.name).levels);
    }
    deepest = std::max(deepest, model.Check(size.name).levels);
    EXPECT_GE(deepest, 2U);
    for (const auto& [key, row] : present)
        ASSERT_TRUE(model.Tree().ContainsKey(key));
    ASSERT_FALSE(model.Tree().ContainsKey(Bytes{0x7F, 0x3F, 1, 0}));
    ASSERT_FALSE(model.Tree().ContainsKey(Bytes{0x7F, 0xFF, 1, 0}));
    for (int i = 0; i < 2000; ++i) {
        const Bytes key = makeKey();
        const auto isKey = [&](const ModelledTree::Entry& entry) { return entry.first == key; };
        ASSERT_EQ(model.Tree().ContainsKey(key), std::ranges::any_of(present, isKey));
    }
    for (const auto& [key, row] : present)
        model.Remove(key, row);
    EXPECT_EQ(model.Check("emptied").levels, 1U);
}

INSTANTIATE_TEST_SUITE_P(
    KeySizes, RandomOperations,
    testing::Values(RandomCase{"short keys", 1, 12, 20, 20000},
                    RandomCase{"few different keys", 1, 2, 3, 12000},
                    RandomCase{"long keys", 100, 500, 30, 6000},
                    RandomCase{"long keys that begin alike", 200, 900, 2, 4000},
                    RandomCase{"greatest keys", 1000, LongestKey - 3, 30, 2500},
                    RandomCase{"keys of all sizes", 1, LongestKey - 3, 10, 4000}),
    [](const auto& size) {
        std::string name = size.param.name;
        std::ranges::replace(name, ' ', '_');
        return name;
    });

}  // namespace
}  // namespace jet::storage
