#include "run/genre_dictionary.h"

#include <deque>
#include <gtest/gtest.h>
#include <string>

namespace quillon {
namespace {

class GenreDictionaryTest : public ::testing::Test {
  protected:
    void Add(const std::string& song, const std::string& genre) {
        SongRow& row = songs.emplace_back();
        row.song = RowText(song);
        dictionary.Add(row, genre);
    }

    std::deque<SongRow> songs;
    GenreDictionary dictionary;
};

TEST_F(GenreDictionaryTest, KnowsSongsByTheirJoinedNames) {
    Add("AlderFirst LightDawn", "Folk");
    EXPECT_EQ(dictionary.Find("Alder", "First Light", "Dawn"), "Folk");
    EXPECT_EQ(dictionary.Find("AlderFirst", " Light", "Dawn"), "Folk");
    EXPECT_EQ(dictionary.Find("Alder", "First Light", "Dusk"), "");
}

TEST_F(GenreDictionaryTest, TellsNamesApartByLetterCase) {
    Add("Dawn", "Folk");
    EXPECT_EQ(dictionary.Find("", "", "dawn"), "");
}

TEST_F(GenreDictionaryTest, LetsTheFirstSongOfItsNamesCount) {
    Add("Dawn", "Folk");
    Add("Dawn", "Rock");
    EXPECT_EQ(dictionary.Find("", "", "Dawn"), "Folk");
    EXPECT_EQ(dictionary.Size(), 1U);
}

TEST_F(GenreDictionaryTest, FindsEachOfManySongs) {
    constexpr int Count = 5000;
    for (int i = 0; i < Count; ++i)
        Add(std::to_string(i), "Genre " + std::to_string(i % 9));
    for (int i = 0; i < Count; ++i)
        EXPECT_EQ(dictionary.Find("", "", std::to_string(i)), "Genre " + std::to_string(i % 9));
}

TEST_F(GenreDictionaryTest, IsEmptyWhenItIsCleared) {
    Add("Dawn", "Folk");
    dictionary.Clear();
    EXPECT_EQ(dictionary.Size(), 0U);
    EXPECT_EQ(dictionary.Find("", "", "Dawn"), "");
}

}  // namespace
}  // namespace quillon
