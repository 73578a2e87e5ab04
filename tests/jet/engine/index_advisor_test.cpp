#include "jet/engine/index_advisor.h"

#include <array>
#include <gtest/gtest.h>

#include "jet/engine/functions.h"
#include "jet/storage/database_file.h"
#include "tests/jet/engine/sample_database.h"

namespace jet::engine {
namespace {

/// A table of songs whose artists a test names, and the plan of a look-up by artist.
class IndexAdvisorTest : public ::testing::Test {
  protected:
    IndexAdvisorTest() { songs_.Load(std::array<std::size_t, 2>{0, 1}); }

    void AddSongs(const std::string& artist, int count) {
        for (int i = 0; i < count; ++i)
            songs_.Insert({Value(artist), Value("Song")});
    }

    /// How SQLite finds an artist's songs once the advisor was asked.
    std::string PlanByArtist() {
        dialect::TableUse use;
        use.definition = &songs_.Definition();
        use.equalColumns = use.valueColumns = {0};
        advisor_.Prepare(use, songs_);
        Statement plan(sqlite_.Handle(),
                       R"(EXPLAIN QUERY PLAN SELECT "Song" FROM "Songs" WHERE "Artist"=?1)");
        plan.Step();
        return std::string(plan.Text(3));
    }

  private:
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

}  // namespace
}  // namespace jet::engine
