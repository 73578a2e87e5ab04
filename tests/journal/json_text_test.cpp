#include "app/journal/json_text.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace quillon {
namespace {

std::string Written(const std::string& text) {
    JsonText json;
    json.Put(text);
    return std::string(json.Text());
}

TEST(JsonText, HoldsEachCharacterAtEachPlaceOfATextOfEachSize) {
    std::vector<std::string> characters{"é", "日", "\U0001F3B5"};
    for (char code = 0; code >= 0 && code < 0x7F; ++code)
        characters.emplace_back(1, code);
    characters.emplace_back(1, '\x7F');
    constexpr std::size_t MostAround = 18;  // more than two blocks of eight
    for (const std::string& character : characters) {
        for (std::size_t before = 0; before <= MostAround; ++before) {
            for (const std::size_t behind : {std::size_t{0}, std::size_t{1}, MostAround - before}) {
                const std::string text =
                    std::string(before, 'a') + character + std::string(behind, '\\');
                const std::string written = Written(text);
                ASSERT_EQ(nlohmann::json::parse(written).get<std::string>(), text) << written;
            }
        }
    }
}

TEST(JsonText, TellsWhatIsNoTextByItsBytes) {
    EXPECT_EQ(Written("\xFF\x01"), R"({"bytes":"ff01"})");
    EXPECT_EQ(Written("more than eight bytes \xC3"),
              R"({"bytes":"6d6f7265207468616e20656967687420627974657320c3"})");
}

TEST(JsonText, HasNamesOfAnySizeOneBehindTheOther) {
    JsonText json;
    const std::string longName(40, 'n');
    for (int i = 0; i < 2; ++i) {
        json.Clear();
        json.Open();
        json.Member("", 1);
        json.Member(longName, 2);
        json.Member("a\"b", 3);
        // Their places in the memory of names may be the same.
        for (char last = 'a'; last <= 'z'; ++last)
            json.Member(std::string("Name of 21 characters") + last, last - 'a');
        json.Close();
        const auto read = nlohmann::json::parse(json.Text());
        EXPECT_EQ(read.size(), 29U);
        EXPECT_EQ(read.at(longName), 2);
        EXPECT_EQ(read.at("a\"b"), 3);
        EXPECT_EQ(read.at("Name of 21 charactersz"), 25);
    }
}

}  // namespace
}  // namespace quillon
