// Entries that come into a tree many at a time.
#include "jet/storage/index/entry_batch.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

#include "jet/error.h"
#include "jet/storage/index/index_key.h"
#include "tests/jet/storage/index/modelled_tree.h"
#include "tests/outside/density.h"

namespace jet::storage {

using test::ModelledTree;
using test::RowNumber;
using Entries = std::vector<ModelledTree::Entry>;

namespace {

Bytes LongKey(std::int64_t number) {
    Bytes key;
    AppendKey(key, number, ColumnType::Long, 0, true);
    return key;
}

std::size_t CountKeys(const std::set<ModelledTree::Entry>& entries) {
    std::set<Bytes> keys;
    for (const auto& [key, row] : entries)
        keys.insert(key);
    return keys.size();
}

TEST(EntryBatch, GivesItsEntriesInOrder) {
    EntryBatch batch;
    for (const int number : {5, 3, 4, 3})
        batch.Add(LongKey(number), RowNumber(static_cast<std::uint32_t>(batch.Count())));
    EXPECT_FALSE(batch.CameInOrder());
    batch.Sort();
    ASSERT_EQ(batch.Count(), 4U);
    for (std::size_t i = 1; i < batch.Count(); ++i)
        EXPECT_TRUE(std::ranges::lexicographical_compare(batch.At(i - 1), batch.At(i)));
    batch.DropFirst(3);
    EXPECT_EQ(batch.Count(), 1U);
    EXPECT_TRUE(std::ranges::equal(batch.LastKey(), LongKey(5)));
    batch.DropFirst(1);
    EXPECT_TRUE(batch.IsEmpty());
    EXPECT_TRUE(batch.CameInOrder());
}

TEST(ABatch, InOrderFillsThePages) {
    ModelledTree one, many;
    Entries entries;
    const auto count = static_cast<std::uint32_t>(30000 / outside::StepUnderSanitizers(6));
    for (std::uint32_t i = 0; i < count; ++i) {
        entries.emplace_back(LongKey(i), RowNumber(i));
        one.Insert(entries.back().first, entries.back().second);
    }
    EXPECT_EQ(many.Insert(entries), count);
    EXPECT_EQ(many.Check("batch").pages.size(), one.Check("one by one").pages.size());
}

TEST(ABatch, WritesAPageOnceForAllThatComesIntoIt) {
    ModelledTree tree;
    Entries entries;
    for (std::uint32_t i = 0; i < 20000; ++i)
        entries.emplace_back(LongKey(i * 10), RowNumber(i));
    tree.Insert(entries);
    const std::size_t leaves = tree.Check("filled").pages.size();
    // Two new entries in front of each old one: each page becomes three or four.
    entries.clear();
    for (std::uint32_t i = 0; i < 40000; ++i)
        entries.emplace_back(LongKey(i * 5 + 1), RowNumber(20000 + i));
    const std::size_t before = tree.Modifications();
    tree.Insert(entries);
    const std::size_t after = tree.Check("three times as many").pages.size();
    // A page, its neighbour's link, its place in the parent, each twice at most.
    EXPECT_LE(tree.Modifications() - before, 6 * (after + leaves));
}

TEST(ABatch, WithAnEntryThatIsThereAlreadyIsDamage) {
    ModelledTree tree;
    tree.Insert(LongKey(7), RowNumber(1));
    for (const int others : {0, 5}) {
        EntryBatch batch;
        for (int i = 0; i < others; ++i)
            batch.Add(LongKey(i), RowNumber(50));
        batch.Add(LongKey(7), RowNumber(1));
        EXPECT_THROW(tree.Tree().Insert(batch, 1), Error);
    }
    EXPECT_EQ(tree.Check("as it was").entries, 1U);
}

TEST(ABatch, CountsTheKeysThatAreNew) {
    std::mt19937 generator(3);
    const auto random = [&generator] { return static_cast<std::uint32_t>(generator()); };
    for (const std::uint32_t keys : {3U, 40U, 3000U}) {
        ModelledTree tree;
        for (int round = 0; round < 30; ++round) {
            const std::size_t before = CountKeys(tree.Entries());
            Entries entries;
            for (std::size_t i = 1 + random() % 500; i > 0; --i)
                entries.emplace_back(LongKey(random() % keys),
                                     RowNumber(static_cast<std::uint32_t>(round) * 1000 +
                                               random() % 2 + 2 * static_cast<std::uint32_t>(i)));
            const std::size_t newKeys = tree.Insert(entries);
            EXPECT_EQ(newKeys, CountKeys(tree.Entries()) - before);
        }
        tree.Check("counted");
    }
}

struct BatchCase {
    const char* name;
    std::size_t shortest, longest, alphabet, most;  // letters of a key, entries of a batch
};

class BatchesOfAllKinds : public testing::TestWithParam<BatchCase> {};

TEST_P(BatchesOfAllKinds, KeepTheTreeEqualToItsModel) {
    const BatchCase& kind = GetParam();
    std::mt19937 random(11);
    ModelledTree tree;
    std::uint32_t row = 0;
    std::vector<ModelledTree::Entry> present;
    for (int round = 0; round < 12; ++round) {
        Entries entries;
        for (std::size_t i = 1 + random() % kind.most; i > 0; --i) {
            Bytes key{0x7F};
            for (std::size_t n = kind.shortest + random() % (kind.longest - kind.shortest + 1);
                 n > 0; --n)
                key.push_back(static_cast<std::uint8_t>(0x40 + random() % kind.alphabet));
            key.insert(key.end(), {1, 0});
            entries.emplace_back(std::move(key), RowNumber(row++));
        }
        if (round % 4 == 1) std::ranges::sort(entries);
        if (round % 4 == 2) std::ranges::sort(entries, std::greater());
        tree.Insert(entries);
        present.insert(present.end(), entries.begin(), entries.end());
        for (std::size_t gone = present.size() / 4; gone > 0; --gone) {
            std::swap(present[random() % present.size()], present.back());
            tree.Remove(present.back().first, present.back().second);
            present.pop_back();
        }
        tree.Check(kind.name);
    }
}

INSTANTIATE_TEST_SUITE_P(KeySizes, BatchesOfAllKinds,
                         testing::Values(BatchCase{"short", 1, 12, 20, 4000},
                                         BatchCase{"alike", 1, 2, 3, 4000},
                                         BatchCase{"long", 100, 500, 30, 600},
                                         BatchCase{"long_and_alike", 200, 900, 2, 300},
                                         BatchCase{"greatest", 1000, LongestKey - 3, 30, 100},
                                         BatchCase{"of_all_sizes", 1, LongestKey - 3, 10, 300}),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
}  // namespace jet::storage
