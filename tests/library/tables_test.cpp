#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "library/download_table.h"
#include "library/playlist_table.h"
#include "library/shared_texts.h"
#include "platform/failure.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;

class TablesTest : public ::testing::Test {
  protected:
    void AddSong(const std::string& values) {
        shelf.Execute("INSERT INTO Spinner (Artist, Album, Song, Genre, FileName) VALUES (" +
                      values + ")");
    }
    Connection& Database() { return *shelf.run.connection; }

    support::TestLibrary shelf;
};

TEST_F(TablesTest, ASongIsFoundByItsNamesAndTheFirstRowHasIt) {
    AddSong("'Ann', Null, 'One', 'Lost', 'x'");
    AddSong("'Ann', 'First', 'One', 'Folk', 'x'");
    AddSong("'ann', 'first', 'one', 'Rock', 'x'");
    DownloadTable table(Database());
    ASSERT_EQ(table.Songs().size(), 3U);
    EXPECT_EQ(table.Find("ANN", "FIRST", "ONE"), &table.Songs()[1]);
    EXPECT_EQ(table.Find("Ann", "", "One"), nullptr) << "no name is not the empty one";
    EXPECT_EQ(table.Find("Ann", "First", "Two"), nullptr);
    EXPECT_EQ(table.FirstOf("ann"), &table.Songs()[0]);
    EXPECT_EQ(table.FirstOf("Bob"), nullptr);
    EXPECT_EQ(RowText(table.Read(table.Songs()[0], "FileName")), "x");
}

TEST_F(TablesTest, ANewSongThatFillsAGapIsTheArtistsFirstAsItWillBeForTheNextRun) {
    DownloadTable table(Database());
    const auto add = [&table](const std::string& artist, const std::string& song) -> SongRow& {
        const std::vector<FieldValue> fields{{"Artist", artist}, {"Song", song}};
        return table.Add(fields);
    };
    // A long row goes to a new page at last, and leaves room for a short one on the page before.
    std::string artist;
    const SongRow* filler = nullptr;
    for (int count = 0; count < 50 && filler == nullptr; ++count) {
        artist = "Artist " + std::to_string(count);
        const SongRow& first = add(artist, std::string(200, 'x'));
        const SongRow& second = add(artist, "Short");
        if (second.key < first.key) filler = &second;
    }
    ASSERT_NE(filler, nullptr) << "no short row came before a long one";
    EXPECT_EQ(table.FirstOf(artist), filler);
    EXPECT_EQ(DownloadTable(Database()).FirstOf(artist)->id, filler->id);
}

TEST_F(TablesTest, ASongThatIsAddedIsFoundAndStored) {
    DownloadTable table(Database());
    const auto expected = static_cast<std::int64_t>(table.NextId());
    const std::vector<FieldValue> fields{{"Artist", std::string("Ann")},
                                         {"Album", std::string("First")},
                                         {"Song", std::string("One")},
                                         {"Genre", std::string("Folk")}};
    SongRow& added = table.Add(fields);
    EXPECT_EQ(static_cast<std::int64_t>(added.id), expected);
    EXPECT_EQ(table.Find("Ann", "First", "One"), &added);
    table.SetLink(added, "rtsp://x");
    table.SetGenre(added, "Rock");
    EXPECT_EQ(added.genre, "Rock");
    EXPECT_THAT(shelf.Rows("SELECT Song, Genre, FileName FROM Spinner"),
                ElementsAre("One|Rock|rtsp://x"));
    const std::vector<FieldValue> refused{{"Artist", std::string(256, 'x')}};
    EXPECT_THROW(table.Add(refused), Failure);
    EXPECT_EQ(table.Songs().size(), 1U);
    EXPECT_EQ(shelf.Faults(), "");
}

TEST_F(TablesTest, APlaylistHasItsFirstRow) {
    for (const char* const mark : {"True", "False"}) {
        shelf.Execute(
            "INSERT INTO Playlists (FilePath, Filename, Type, AutoGenre, AutoArtist) VALUES "
            "('D:\\Lists\\', 'Folk', '.pla', " +
            std::string(mark) + ", False)");
    }
    PlaylistTable table(Database());
    ASSERT_EQ(table.Find(R"(d:\lists\)", "FOLK"), &table.Rows().front());
    EXPECT_TRUE(table.Rows()[0].byGenre);
    EXPECT_EQ(table.Find(R"(D:\Lists\)", "Jazz"), nullptr);
    table.Change(table.Rows()[0], {"AutoArtist", true});
    EXPECT_TRUE(table.Rows()[0].byArtist);
    EXPECT_THAT(shelf.Rows("SELECT AutoArtist FROM Playlists"), ElementsAre("True", "False"));
}

TEST(SharedTexts, KeepEachSpellingOnceAndTellNullFromNothing) {
    SharedTexts texts;
    const SharedText ann = texts.Keep(std::string("Ann")), bob = texts.Keep(std::string("Bob"));
    EXPECT_EQ(&texts.Keep(std::string("Ann")).Text(), &ann.Text());
    EXPECT_EQ(texts.Keep(std::string("ann")), "ann");
    EXPECT_EQ(bob, "Bob");
    EXPECT_TRUE(texts.Keep(Null{}).IsNull());
    EXPECT_FALSE(texts.Keep(std::string()).IsNull());
    EXPECT_TRUE(texts.Keep(std::string()).IsEmpty());
    EXPECT_EQ(SharedText(), "");
}

}  // namespace
}  // namespace quillon
