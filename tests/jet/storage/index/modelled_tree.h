#pragma once

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <utility>
#include <vector>

#include "jet/storage/index/index_tree.h"
#include "tests/jet/storage/index/memory_pages.h"
#include "tests/jet/storage/index/tree_faults.h"

namespace jet::test {

/// An index beside a model of what it must hold.
class ModelledTree {
  public:
    using Entry = std::pair<Bytes, storage::RowId>;

    ModelledTree() : root_(MakeRoot()), tree_(pages_, listed_, root_, Definition) {}

    void Insert(const Bytes& key, storage::RowId row) {
        tree_.Insert(key, row);
        entries_.emplace(key, row);
    }

    /// All in one batch, after they were sorted; in as many steps as pages take part. Returns how
    /// many keys were new.
    std::size_t Insert(const std::vector<Entry>& entries) {
        storage::EntryBatch batch;
        for (const auto& [key, row] : entries) {
            batch.Add(key, row);
            entries_.emplace(key, row);
        }
        batch.Sort();
        std::size_t newKeys = 0;
        while (!batch.IsEmpty()) {
            const auto inserted = tree_.Insert(batch, 3);
            newKeys += inserted.newKeys;
            batch.DropFirst(inserted.entries);
        }
        return newKeys;
    }

    void Remove(const Bytes& key, storage::RowId row) {
        tree_.Remove(key, row);
        entries_.erase({key, row});
    }

    /// Compares everything; `what` is for the message.
    TreeShape Check(const char* what) {
        TreeShape shape = ReadTree(pages_, root_, Definition);
        EXPECT_THAT(shape.faults, testing::IsEmpty()) << what;
        std::vector<Entry> found;
        tree_.ForEach([&found](std::span<const std::uint8_t> key, storage::RowId row) {
            found.emplace_back(Bytes(key.begin(), key.end()), row);
        });
        EXPECT_TRUE(std::ranges::equal(found, entries_)) << what;
        EXPECT_EQ(shape.entries, entries_.size()) << what;
        std::set<storage::PageNumber> inTree(shape.pages.begin(), shape.pages.end());
        EXPECT_EQ(inTree, listed_.Pages()) << what;
        inTree.insert(root_);
        EXPECT_EQ(inTree, pages_.InUse()) << what;
        return shape;
    }

    const std::set<Entry>& Entries() const { return entries_; }
    storage::IndexTree& Tree() { return tree_; }
    /// How often a page was asked for to be changed.
    std::size_t Modifications() const { return pages_.Modifications(); }

  private:
    static constexpr storage::PageNumber Definition = 7;

    storage::PageNumber MakeRoot() {
        const storage::PageNumber root = pages_.Allocate();
        storage::IndexTree::MakeEmpty(pages_.Modify(root), Definition);
        return root;
    }

    MemoryPages pages_;
    ListedPages listed_;
    storage::PageNumber root_;
    storage::IndexTree tree_;
    std::set<Entry> entries_;
};

inline storage::RowId RowNumber(std::uint32_t number) {
    return {.page = 100 + number / 50, .slot = static_cast<std::uint8_t>(number % 50)};
}

}  // namespace jet::test
