#include "library/row_index.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

namespace quillon {
namespace {

std::vector<RowIndex::Row> RowsWith(const RowIndex& index, std::uint32_t hash) {
    std::vector<RowIndex::Row> rows;
    index.ForEach(hash, [&rows](RowIndex::Row row) { rows.push_back(row); });
    return rows;
}

TEST(RowIndex, IsEmptyAtFirst) {
    EXPECT_EQ(RowsWith(RowIndex(), 0), std::vector<RowIndex::Row>());
}

TEST(RowIndex, GivesTheRowsOfAHashTheLastOneFirst) {
    RowIndex index;
    index.Add(7, 1);
    index.Add(8, 2);
    index.Add(7, 3);
    EXPECT_EQ(RowsWith(index, 7), (std::vector<RowIndex::Row>{3, 1}));
    EXPECT_EQ(RowsWith(index, 8), (std::vector<RowIndex::Row>{2}));
    EXPECT_EQ(RowsWith(index, 9), std::vector<RowIndex::Row>());
}

TEST(RowIndex, FindsAllOfManyRowsWhateverTheirHashes) {
    std::minstd_rand random(1);
    RowIndex index;
    std::map<std::uint32_t, std::vector<RowIndex::Row>> expected;
    for (RowIndex::Row row = 0; row < 5000; ++row) {
        // Many that begin at one place, and some that are shared.
        const auto hash = static_cast<std::uint32_t>(random() % 1500) << 16U;
        index.Add(hash, row);
        expected[hash].push_back(row);
    }
    for (auto& [hash, rows] : expected) {
        std::ranges::reverse(rows);
        EXPECT_EQ(RowsWith(index, hash), rows) << hash;
    }
}

}  // namespace
}  // namespace quillon
