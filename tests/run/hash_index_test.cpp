#include "run/hash_index.h"

#include <gtest/gtest.h>
#include <set>

namespace quillon {
namespace {

TEST(HashIndex, FindsNothingWhileEmpty) {
    EXPECT_FALSE(HashIndex().Find(7, [](HashIndex::Row) { return true; }));
}

TEST(HashIndex, FindsEachOfManyRowsAndNoOther) {
    constexpr HashIndex::Row Rows = 100'000;
    HashIndex index;
    for (HashIndex::Row row = 0; row < Rows; ++row)
        index.Add(MixedHash(row), row);
    for (HashIndex::Row row = 0; row < Rows; ++row) {
        const auto found =
            index.Find(MixedHash(row), [row](HashIndex::Row at) { return at == row; });
        ASSERT_EQ(found, row);
    }
    EXPECT_FALSE(index.Find(MixedHash(Rows), [](HashIndex::Row at) { return at == Rows; }));
}

TEST(HashIndex, TellsRowsOfTheSameHashApart) {
    HashIndex index;
    for (HashIndex::Row row = 0; row < 20; ++row)
        index.Add(0xFFFFFFFF, row);
    EXPECT_EQ(index.Find(0xFFFFFFFF, [](HashIndex::Row at) { return at == 13; }), 13U);
    EXPECT_FALSE(index.Find(0xFFFFFFFF, [](HashIndex::Row) { return false; }));
    EXPECT_FALSE(index.Find(1, [](HashIndex::Row) { return true; }));
}

TEST(MixedHash, SpreadsNeighbours) {
    std::set<std::uint32_t> hashes;
    for (std::uint64_t first = 0; first < 100; ++first)
        for (std::uint64_t second = 0; second < 100; ++second)
            hashes.insert(MixedHash(first, second));
    EXPECT_GT(hashes.size(), 9990U);
}

}  // namespace
}  // namespace quillon
