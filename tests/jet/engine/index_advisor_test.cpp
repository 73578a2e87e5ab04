#include "jet/engine/index_advisor.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "jet/engine/functions.h"
#include "jet/storage/database_file.h"
#include "tests/jet/engine/sample_database.h"

namespace jet::engine {
namespace {

using ::testing::HasSubstr;

/// A table of songs whose artists a test names, and the plans of look-ups.
class IndexAdvisorTest : public ::testing::Test {
  protected:
    IndexAdvisorTest() { songs_.Load(std::array<std::size_t, 2>{0, 1}); }

    void AddSong(const std::string& artist, const std::string& song) {
        songs_.Insert({Value(artist), Value(song)});
    }
    void AddSongs(const std::string& artist, int count) {
        for (int i = 0; i < count; ++i)
            AddSong(artist, "Song");
    }

    /// So many songs an artist, one behind the other, with the same titles for each.
    void AddNumberedSongs(int count, int ofAnArtist) {
        for (int i = 0; i < count; ++i)
            AddSong("Artist " + std::to_string(i / ofAnArtist),
                    "Track " + std::to_string(i % ofAnArtist));
    }

    /// How SQLite finds an artist's songs once the advisor was asked.
    std::string PlanByArtist() { return Plan({0}, R"("Artist"=?1)"); }
    /// The same of one song of an artist.
    std::string PlanByBoth() { return Plan({0, 1}, R"("Artist"=?1 AND "Song"=?2)"); }

  private:
    std::string Plan(const std::vector<std::size_t>& columns, const std::string& condition) {
        dialect::TableUse use;
        use.definition = &songs_.Definition();
        use.equalColumns = use.valueColumns = columns;
        advisor_.Prepare(use, songs_);
        Statement plan(sqlite_.Handle(),
                       R"(EXPLAIN QUERY PLAN SELECT "Song" FROM "Songs" WHERE )" + condition);
        plan.Step();
        return std::string(plan.Text(3));
    }

    static storage::DatabaseFile MakeFile(const std::filesystem::path& path) {
        const std::vector<TableDefinition> tables{
            {.name = "Songs",
             .columns = {testing::Text("Artist"), testing::Text("Song")},
             .indexes = {}}};
        storage::DatabaseFile::Create(path, tables);
        return storage::DatabaseFile::Open(path, OpenMode::ReadWrite);
    }

    static Sqlite WithFunctions() {
        Sqlite sqlite;
        RegisterFunctions(sqlite);
        return sqlite;
    }

    outside::TemporaryFolder folder_;
    storage::DatabaseFile file_ = MakeFile(folder_.Path() / "songs.mdb");
    Sqlite sqlite_ = WithFunctions();
    StatementCache statements_{sqlite_};
    MirrorTable songs_{sqlite_, statements_, file_.OpenTable("Songs")};
    IndexAdvisor advisor_{sqlite_, statements_};
};

TEST_F(IndexAdvisorTest, FindsFewSongsAmongThoseOfAnArtistWhoHasMost) {
    AddSongs("Various Artists", 180);
    AddSongs("Lindqvist", 10);
    AddSongs("Ohm", 10);
    EXPECT_EQ(PlanByArtist().substr(0, 6), "SEARCH");
}

TEST_F(IndexAdvisorTest, MakesNoIndexOverOneValue) {
    AddSongs("Various Artists", 200);
    EXPECT_EQ(PlanByArtist().substr(0, 4), "SCAN");
}

TEST_F(IndexAdvisorTest, ThinksAgainWhenTheTableHasDoubled) {
    AddSongs("Various Artists", 100);
    EXPECT_EQ(PlanByArtist().substr(0, 4), "SCAN");
    for (int i = 0; i < 150; ++i)
        AddSongs("Artist " + std::to_string(i), 1);
    EXPECT_EQ(PlanByArtist().substr(0, 6), "SEARCH");
}

TEST_F(IndexAdvisorTest, LeavesASmallTableAlone) {
    AddSongs("Lindqvist", 8);
    AddSongs("Ohm", 8);
    AddSongs("Volt", 8);
    EXPECT_EQ(PlanByArtist().substr(0, 4), "SCAN");
}

TEST_F(IndexAdvisorTest, TakesOneColumnWhereThatFindsFewRows) {
    for (int i = 0; i < 300; ++i)
        AddSong("Artist " + std::to_string(i % 30), "Song " + std::to_string(i));
    EXPECT_THAT(PlanByBoth(), HasSubstr("(Song=?)"));
}

TEST_F(IndexAdvisorTest, TakesAllColumnsWhereTheBestOneFindsManyRows) {
    AddNumberedSongs(300, 10);
    EXPECT_THAT(PlanByBoth(), HasSubstr("(Artist=? AND Song=?)"));
}

TEST_F(IndexAdvisorTest, AnIndexOverAllColumnsServesALookUpByItsFirst) {
    AddNumberedSongs(300, 10);
    const std::string plan = PlanByBoth();
    EXPECT_THAT(PlanByArtist(), HasSubstr(plan.substr(0, plan.find('('))));
}

// A sample of every n-th row would see no artist twice.
TEST_F(IndexAdvisorTest, SeesHowManyRowsHaveOneValueWhereThoseStandTogether) {
    AddNumberedSongs(6000, 20);
    EXPECT_THAT(PlanByBoth(), HasSubstr("(Artist=? AND Song=?)"));
}

// Titles such as "Intro": few in all, but dear where they are looked up by nothing else.
TEST_F(IndexAdvisorTest, CountsAFewNamesThatManyRowsHave) {
    for (int i = 0; i < 3000; ++i)
        AddSong("Artist " + std::to_string(i), i % 4 == 0 ? "Intro" : "Song " + std::to_string(i));
    EXPECT_THAT(PlanByBoth(), HasSubstr("(Artist=?"));
}

}  // namespace
}  // namespace jet::engine
