#include "jet/storage/index/sort_table.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "tests/jet/storage/index/samples.h"
#include "tests/outside/shared_folder.h"

namespace jet::storage {
namespace {

TEST(SortTable, GivesCaseVariantsTheSameLetter) {
    const SortTable& table = SortTable::Get();
    for (char16_t letter = u'A'; letter <= u'Z'; ++letter)
        EXPECT_EQ(table[letter].letterBytes, table[static_cast<char16_t>(letter + 32)].letterBytes);
}

TEST(SortTable, CountsTheLettersOfLigatures) {
    const SortTable& table = SortTable::Get();
    EXPECT_EQ(table[u'a'].letters, 1);
    EXPECT_EQ(table[u'^'].letters, 1);       // two bytes, one character
    EXPECT_EQ(table[u'\u00DF'].letters, 2);  // ss
    EXPECT_EQ(table[u'\uFB03'].letters, 3);  // ffi
    EXPECT_EQ(table[u'\uFB05'].letters, 2);  // long s and t: a letter of two bytes and one of one
    EXPECT_EQ(table[u'\u05F0'].letters, 2);  // two letters of two bytes each
    EXPECT_EQ(table[u'-'].letters, 0);
}

/// A list of bytes as this project keeps it: its number and how many there are.
struct ByteList {
    unsigned long value = 0;
    std::size_t size = 0;
};

ByteList ParseBytes(const std::string& digits) {
    if (digits == "-") return {};
    return {std::strtoul(digits.c_str(), nullptr, 16), digits.size() / 2};
}

TEST(SortTable, AgreesWithTheListOfAllUnits) {
    const auto shared = outside::SharedFolder();
    std::ifstream list(shared ? *shared / "mdb" / "sort-keys.tsv" : std::filesystem::path());
    const SortTable& table = SortTable::Get();
    std::size_t units = 0;
    for (std::string line; std::getline(list, line);) {
        if (line.empty() || line.starts_with('#')) continue;
        std::istringstream fields(line);
        std::string range, kind, letters, accents, modifier, unprintable, kana;
        fields >> range >> kind >> letters >> accents >> modifier >> unprintable >> kana;
        const unsigned long first = std::strtoul(range.c_str(), nullptr, 16);
        const auto dash = range.find('-');
        const unsigned long last =
            dash == std::string::npos ? first : std::strtoul(range.c_str() + dash + 1, nullptr, 16);
        for (unsigned long unit = first; unit <= last; ++unit, ++units) {
            const SortUnit& entry = table[static_cast<char16_t>(unit)];
            ASSERT_EQ(entry.letterBytes, ParseBytes(letters).value) << range;
            ASSERT_EQ(entry.letterSize, ParseBytes(letters).size) << range;
            ASSERT_EQ(entry.accentBytes, ParseBytes(accents).value) << range;
            ASSERT_EQ(entry.accentSize, ParseBytes(accents).size) << range;
            ASSERT_EQ(entry.modifier, ParseBytes(modifier).value) << range;
            ASSERT_EQ(entry.unprintable, ParseBytes(unprintable).value) << range;
            ASSERT_EQ(entry.kana, ParseBytes(kana).value) << range;
        }
    }
    EXPECT_EQ(units, shared ? 65536U : 0U);
}

}  // namespace
}  // namespace jet::storage
