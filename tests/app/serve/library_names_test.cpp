#include "app/serve/library_names.h"

#include <fstream>
#include <gtest/gtest.h>

#include "jet/database.h"
#include "jukebox/jukebox_database.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class LibraryNamesTest : public testing::Test {
  protected:
    LibraryNamesTest() {
        CreateJukeboxDatabase(Database());
        Execute({"INSERT INTO Albums (CDJID, Artist, Title) VALUES ('A1', 'Alder', 'First Light')",
                 "INSERT INTO Tracks (CDJID, Track, Title) VALUES ('A1', 2, 'Noon')",
                 "INSERT INTO Tracks (CDJID, Track, Title) VALUES ('lost', 1, 'Nobody')"});
    }

    fs::path Database() const { return folder_.Path() / "jukebox.mdb"; }

    void Execute(const std::vector<std::string>& statements) const {
        jet::Database database = jet::Database::Open(Database(), jet::OpenMode::ReadWrite);
        for (const std::string& statement : statements)
            database.Execute(statement);
    }

    /// Files written within a moment may carry one time; this one is surely another.
    void MakeNewer() const {
        fs::last_write_time(Database(), fs::last_write_time(Database()) + std::chrono::seconds(2));
    }

  private:
    outside::TemporaryFolder folder_;
};

TEST_F(LibraryNamesTest, ComeFromTheDatabase) {
    LibraryNames names(Database(), "");
    const auto answer = names.Get();
    EXPECT_EQ(answer.problem, "");
    const AlbumNames* const album = answer.names->Find("A1");
    ASSERT_NE(album, nullptr);
    EXPECT_EQ(album->artist, "Alder");
    EXPECT_EQ(album->title, "First Light");
    EXPECT_EQ(album->tracks, (std::map<std::int64_t, std::string>{{2, "Noon"}}));
    EXPECT_EQ(answer.names->Find("lost"), nullptr);
}

TEST_F(LibraryNamesTest, FollowTheFile) {
    LibraryNames names(Database(), "");
    const auto before = names.Get();
    EXPECT_EQ(names.Get().names, before.names) << "read once";
    Execute({"UPDATE Albums SET Title='Second Light'"});
    MakeNewer();
    EXPECT_EQ(names.Get().names->Find("A1")->title, "Second Light");
    EXPECT_EQ(before.names->Find("A1")->title, "First Light") << "who still shows them keeps them";
}

TEST_F(LibraryNamesTest, WaitForNobodyWhoHasTheDatabaseOpen) {
    LibraryNames late(Database(), "");
    LibraryNames early(Database(), "");
    early.Get();
    {
        jet::Database open = jet::Database::Open(Database(), jet::OpenMode::ReadWrite);
        open.Execute("UPDATE Albums SET Title='Half done'");
        open.Flush();
        MakeNewer();
        EXPECT_EQ(late.Get().names->Find("A1"), nullptr);
        EXPECT_EQ(late.Get().problem, "The database is in use just now.");
        EXPECT_EQ(early.Get().names->Find("A1")->title, "First Light");
        EXPECT_EQ(early.Get().problem, "The database is in use just now.");
    }
    EXPECT_EQ(late.Get().names->Find("A1")->title, "Half done");
    EXPECT_EQ(early.Get().problem, "");
}

TEST_F(LibraryNamesTest, KeepNobodyWaiting) {
    LibraryNames names(Database(), "");
    names.Get();
    EXPECT_NO_THROW(jet::Database::Open(Database(), jet::OpenMode::ReadWrite));
}

TEST_F(LibraryNamesTest, AreMissingWithAReason) {
    const auto problem = [](const std::optional<fs::path>& path, const std::string& reason) {
        LibraryNames names(path, reason);
        const auto answer = names.Get();
        EXPECT_TRUE(answer.names->albums.empty());
        return answer.problem;
    };
    EXPECT_EQ(problem(std::nullopt, "nowhere"), "nowhere");
    EXPECT_EQ(problem("/nowhere/x.mdb", ""),
              "The database cannot be read: No such file or directory");
    std::ofstream(Database()) << "no database";
    EXPECT_NE(problem(Database(), ""), "");
    fs::remove(Database());
    jet::Database::Create(Database(), {});
    EXPECT_NE(problem(Database(), ""), "") << "without tables";
}

}  // namespace
}  // namespace quillon
