#include <algorithm>
#include <cctype>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <random>

#include "jet/error.h"
#include "jet/storage/index/index_key.h"
#include "jet/storage/index/index_tree.h"
#include "tests/jet/storage/index/memory_pages.h"
#include "tests/jet/storage/index/samples.h"
#include "tests/jet/storage/index/tree_faults.h"
#include "tests/outside/density.h"
#include "tests/outside/shared_folder.h"

namespace jet::storage {
namespace {

using Entries = std::vector<std::pair<Bytes, RowId>>;

std::map<PageNumber, Entries> EntriesByRoot(const test::SampleIndexes& samples) {
    std::map<PageNumber, Entries> byRoot;
    for (const test::SampleEntry& entry : samples.entries)
        byRoot[samples.Find(entry).root].emplace_back(entry.key, entry.row);
    return byRoot;
}

Entries ReadAll(const IndexTree& tree) {
    Entries entries;
    tree.ForEach([&entries](std::span<const std::uint8_t> key, RowId row) {
        entries.emplace_back(Bytes(key.begin(), key.end()), row);
    });
    return entries;
}

/// Pages of an existing index may be given back as well as own ones.
class IgnoredPages : public IndexPageListener {
  public:
    void PageTaken(PageNumber) override {}
    void PageReleased(PageNumber) override {}
};

class FilePages : public test::MemoryPages {
  public:
    using test::MemoryPages::MemoryPages;
    void Free(PageNumber page) override { Modify(page).fill(0xA5); }
};

class SampleTrees : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(SampleTrees, HoldTheEntriesThatAnotherReaderFound) {
    const test::SampleIndexes samples = test::ReadSampleIndexes(GetParam());
    auto expected = EntriesByRoot(samples);
    FilePages pages(GetParam());
    IgnoredPages listener;
    for (const test::SampleIndex& index : samples.indexes) {
        const IndexTree tree(pages, listener, index.root, index.definition);
        EXPECT_EQ(ReadAll(tree), expected[index.root]) << index.table << "." << index.name;
        for (const auto& [key, row] : expected[index.root])
            ASSERT_TRUE(tree.ContainsKey(key));
        EXPECT_FALSE(tree.ContainsKey(Bytes{0x7F}));
    }
}

TEST_P(SampleTrees, CanBeChangedAndEmptied) {
    const test::SampleIndexes samples = test::ReadSampleIndexes(GetParam());
    FilePages pages(GetParam());
    IgnoredPages listener;
    std::mt19937 random(3);
    for (auto& [root, entries] : EntriesByRoot(samples)) {
        const auto index = std::ranges::find(samples.indexes, root, &test::SampleIndex::root);
        IndexTree tree(pages, listener, root, index->definition);
        // Twice as many rows, the new ones between the old ones and behind them.
        Entries all = entries;
        for (const auto& [key, row] : entries) {
            const RowId added{.page = row.page + 100000, .slot = row.slot};
            tree.Insert(key, added);
            all.emplace_back(key, added);
        }
        std::ranges::sort(all);
        ASSERT_EQ(ReadAll(tree), all) << index->table << "." << index->name;
        std::ranges::shuffle(all, random);
        for (const auto& [key, row] : all)
            tree.Remove(key, row);
        EXPECT_THAT(ReadAll(tree), testing::IsEmpty());
        const test::TreeShape shape = test::ReadTree(pages, root, index->definition);
        EXPECT_THAT(shape.faults, testing::IsEmpty());
        EXPECT_EQ(shape.levels, 1U);
    }
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleTrees);
INSTANTIATE_TEST_SUITE_P(AllSamples, SampleTrees, testing::ValuesIn(outside::SampleDatabases()),
                         [](const auto& sample) { return test::SampleName(sample.param); });

TEST(DeepSample, HasTreesOfThreeLevels) {
    for (const auto& path : outside::SampleDatabases()) {
        if (path.stem() != "deep-index") continue;
        const test::SampleIndexes samples = test::ReadSampleIndexes(path);
        FilePages pages(path);
        std::size_t deepest = 0;
        for (const test::SampleIndex& index : samples.indexes)
            deepest = std::max(deepest, test::ReadTree(pages, index.root, index.definition).levels);
        EXPECT_EQ(deepest, 3U);
    }
}

/// A tree of two or three levels, to be damaged.
struct Victim {
    Victim() {
        root = pages.Allocate();
        IndexTree::MakeEmpty(pages.Modify(root), 7);
        IndexTree tree(pages, listener, root, 7);
        for (int i = 0; i < 600; ++i)
            tree.Insert(Key(i), Row(i));
    }

    static Bytes Key(int i) {
        Bytes key;
        AppendKey(key, "A title that many others begin like " + std::to_string(i * 37 % 600),
                  ColumnType::Text, 0, true);
        return key;
    }
    static RowId Row(int i) { return {.page = static_cast<PageNumber>(i), .slot = 1}; }

    FilePages pages;
    IgnoredPages listener;
    PageNumber root = 0;
};

TEST(IndexTree, AnswersDamagedPagesWithAnErrorOrAResult) {
    std::mt19937 random(11);
    int refused = 0, rounds = 0;
    for (std::size_t round = 0; round < 400; round += outside::StepUnderSanitizers(4)) {
        ++rounds;
        Victim victim;
        for (int flips = 0; flips < 3; ++flips) {
            const auto number = static_cast<PageNumber>(random() % (victim.pages.PageCount() - 1));
            Page& page = victim.pages.Modify(1 + number);
            // Half of the flips go to header and mask, where they do most harm.
            const std::size_t place = random() % (flips % 2 == 0 ? 600 : PageSize);
            page[place] = static_cast<std::uint8_t>(random());
        }
        IndexTree tree(victim.pages, victim.listener, victim.root, 7);
        const auto attempt = [&refused](const auto& action) {
            try {
                action();
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), ErrorKind::Damaged) << error.what();
                ++refused;
            }
        };
        attempt([&] { ReadAll(tree); });
        for (int i = 0; i < 40; ++i) {
            const int number = static_cast<int>(random() % 600);
            attempt([&] { tree.ContainsKey(Victim::Key(number)); });
            attempt([&] { tree.Remove(Victim::Key(number), Victim::Row(number)); });
            attempt([&] { tree.Insert(Victim::Key(number), Victim::Row(number + 1000)); });
        }
        attempt([&] { ReadAll(tree); });
    }
    EXPECT_GT(refused, rounds);
}

TEST(IndexTree, RefusesPagesOfAnotherTableOrKind) {
    Victim victim;
    const IndexTree other(victim.pages, victim.listener, victim.root, 8);
    EXPECT_THROW(other.ContainsKey(Victim::Key(1)), Error);
    victim.pages.Modify(victim.root)[0] = 1;
    const IndexTree tree(victim.pages, victim.listener, victim.root, 7);
    EXPECT_THROW(tree.ContainsKey(Victim::Key(1)), Error);
}

TEST(IndexTree, RefusesATreeThatGoesInCircles) {
    Victim victim;
    // The root's first child is the root itself.
    Page& root = victim.pages.Modify(victim.root);
    ASSERT_EQ(root[0], 3);
    std::size_t end = 0;
    while ((root[27 + end / 8] >> (end % 8) & 1) == 0)
        ++end;
    root[480 + end - 1] = static_cast<std::uint8_t>(victim.root);
    IndexTree tree(victim.pages, victim.listener, victim.root, 7);
    EXPECT_THROW(tree.ContainsKey(Bytes{0}), Error);
    EXPECT_THROW(tree.Insert(Bytes{0x7F, 1, 0}, Victim::Row(1)), Error);
    EXPECT_THROW(ReadAll(tree), Error);
}

}  // namespace
}  // namespace jet::storage
