#include "library/order_by_number.h"

#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillon {
namespace {

struct Numbered {
    int id = 0;
    std::string name;
};

std::vector<std::string> Ordered(std::deque<Numbered> rows) {
    OrderByNumber(rows);
    std::vector<std::string> names;
    for (const Numbered& row : rows)
        names.push_back(row.name);
    return names;
}

TEST(OrderByNumber, PutsRowsWhereTheyCame) {
    EXPECT_THAT(Ordered({{2, "b"}, {4, "d"}, {1, "a"}, {3, "c"}}),
                testing::ElementsAre("a", "b", "c", "d"));
}

TEST(OrderByNumber, LeavesRowsOfOneNumberInTheirOrder) {
    EXPECT_THAT(Ordered({{5, "e"}, {0, "z"}, {0, "a"}, {0, "m"}}),
                testing::ElementsAre("z", "a", "m", "e"));
    EXPECT_TRUE(Ordered({}).empty());
}

}  // namespace
}  // namespace quillon
