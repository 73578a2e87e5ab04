#include "undo/field_map.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

std::vector<std::pair<std::string, Value>> Entries(const FieldMap& fields) {
    std::vector<std::pair<std::string, Value>> entries;
    for (const auto& [name, value] : fields)
        entries.emplace_back(name, value);
    return entries;
}

TEST(FieldMap, GivesEachValueBackInTheOrderOfNames) {
    FieldMap fields;
    fields.Set("Title", std::string("a\0b", 3));
    fields.Set("ID", std::numeric_limits<std::int64_t>::min());
    fields.Set("Long", std::string(70'000, 'x'));
    fields.Set("DateAdded", DateTime{45000.25});
    fields.Set("Rating", -0.5);
    fields.Set("NeverPlay", true);
    fields.Set("Artist", Null());
    fields.Set("Notes", "");
    EXPECT_THAT(
        Entries(fields),
        ElementsAre(Pair("Artist", Value(Null())), Pair("DateAdded", Value(DateTime{45000.25})),
                    Pair("ID", Value(std::numeric_limits<std::int64_t>::min())),
                    Pair("Long", Value(std::string(70'000, 'x'))), Pair("NeverPlay", Value(true)),
                    Pair("Notes", Value("")), Pair("Rating", Value(-0.5)),
                    Pair("Title", Value(std::string("a\0b", 3)))));
    EXPECT_EQ(fields.size(), 8U);
}

TEST(FieldMap, ReplacesAValueByOneOfAnotherSize) {
    FieldMap fields;
    fields.Set("A", std::int64_t{1});
    fields.Set("B", "short");
    fields.Set("C", false);
    fields.Set("B", "a text that is longer");
    fields.SetIfNew("B", "not taken");
    EXPECT_THAT(Entries(fields),
                ElementsAre(Pair("A", Value(std::int64_t{1})),
                            Pair("B", Value("a text that is longer")), Pair("C", Value(false))));
    fields.Set("B", Null());
    EXPECT_EQ(fields.at("B"), Value(Null()));
    EXPECT_EQ(fields.at("C"), Value(false));
    EXPECT_TRUE(fields.find("AB") == fields.end());
    EXPECT_TRUE(fields.find("D") == fields.end());
}

TEST(FieldMap, IsTheSameInWhateverOrderItWasFilled) {
    FieldMap one, other;
    one.Set("A", 0.0);
    one.Set("B", std::int64_t{2});
    other.SetIfNew("B", std::int64_t{2});
    other.SetIfNew("A", -0.0);
    EXPECT_EQ(one, other);
    other.Set("B", 2.0);
    EXPECT_NE(one, other) << "the types differ";
    one.clear();
    EXPECT_TRUE(one.empty());
}

}  // namespace
}  // namespace quillon
