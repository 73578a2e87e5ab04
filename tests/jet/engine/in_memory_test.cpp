#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>

#include "jet/storage/system_file.h"
#include "tests/jet/engine/sample_database.h"

namespace jet::testing {
namespace {

namespace fs = std::filesystem;

/// Everything that can be seen from outside of a folder with files.
std::string SeenFromOutside(const fs::path& folder) {
    std::ostringstream seen;
    std::set<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder))
        files.insert(entry.path());
    files.insert(folder);
    for (const fs::path& file : files) {
        const storage::FileFacts facts = storage::FactsOfName(file).value();
        seen << file << facts.size << ' ' << facts.number << ' ' << facts.written << ' '
             << facts.changed << '\n';
        if (fs::is_regular_file(file)) seen << std::ifstream(file, std::ios::binary).rdbuf();
    }
    return std::move(seen).str();
}

void ChangeALot(Database& database) {
    for (int i = 0; i < 300; ++i) {
        database.Execute("INSERT INTO SpinnerArtist (Artist, ShortBio) VALUES (:artist, :bio)",
                         {{"artist", "Artist " + std::to_string(i * 7919 % 1000)},
                          {"bio", std::string(200, 'x')}});
        if (i % 100 == 99) database.Flush();
    }
    database.Execute("UPDATE Tracks SET Title=Title & '!' WHERE Track=1");
    database.Execute("DELETE * FROM Tracks WHERE Track=2");
    database.Execute("INSERT INTO Tracks (Title) VALUES ('new')");
    database.Flush();
}

std::string AllRows(Database& database) {
    return Rows(database, "SELECT * FROM Tracks") + Rows(database, "SELECT * FROM Albums") +
           Rows(database, "SELECT * FROM SpinnerArtist");
}

TEST(DatabaseInMemory, NeverTouchesTheFileOrItsFolder) {
    SampleDatabase database;
    database.Close();
    const std::string before = SeenFromOutside(database.Path().parent_path());
    database.Reopen(OpenMode::InMemory);
    const std::string rows = AllRows(database.Get());
    ChangeALot(database.Get());
    EXPECT_NE(AllRows(database.Get()), rows);
    EXPECT_EQ(SeenFromOutside(database.Path().parent_path()), before);
    database.Close();
    EXPECT_EQ(SeenFromOutside(database.Path().parent_path()), before);
    database.Reopen();
    EXPECT_EQ(AllRows(database.Get()), rows);
}

TEST(DatabaseInMemory, HasTheRowsThatTheFileWouldHave) {
    SampleDatabase real, scratch;
    scratch.Close();
    scratch.Reopen(OpenMode::InMemory);
    ChangeALot(real.Get());
    ChangeALot(scratch.Get());
    EXPECT_EQ(AllRows(scratch.Get()), AllRows(real.Get()));
    EXPECT_EQ(scratch->NextNumber("Tracks"), real->NextNumber("Tracks"));
}

TEST(DatabaseInMemory, ATransactionThatIsTakenBackLeavesWhatWasChangedBefore) {
    SampleDatabase database;
    database.Close();
    database.Reopen(OpenMode::InMemory);
    ChangeALot(database.Get());
    const std::string rows = AllRows(database.Get());
    {
        const Transaction transaction(database.Get());
        database.Execute("DELETE * FROM Tracks");
        EXPECT_NE(AllRows(database.Get()), rows);
    }
    EXPECT_EQ(AllRows(database.Get()), rows);
    database.Execute("CREATE TABLE Extra (ID LONG)");
    database.Execute("INSERT INTO Extra VALUES (5)");
    EXPECT_EQ(database.Rows("SELECT * FROM Extra"), "5");
}

TEST(DatabaseInMemory, DoesNotMindAWriter) {
    SampleDatabase database;
    database.Execute("UPDATE Tracks SET Title='written'");
    database->Flush();
    Database scratch = Database::Open(database.Path(), OpenMode::InMemory);
    scratch.Execute("UPDATE Tracks SET Title='tried'");
    scratch.Flush();
    EXPECT_EQ(Rows(scratch, "SELECT DISTINCT Title FROM Tracks"), "tried");
    EXPECT_EQ(database.Rows("SELECT DISTINCT Title FROM Tracks"), "written");
}

TEST(DatabaseInMemory, NoticesThatTheFileWasChangedByOthers) {
    SampleDatabase database;
    database.Close();
    Database scratch = Database::Open(database.Path(), OpenMode::InMemory);
    scratch.Execute("UPDATE Tracks SET Title='tried'");
    database.Reopen();
    database.Execute("UPDATE Tracks SET Title='written'");
    database.Close();
    EXPECT_THROW(scratch.Flush(), Error) << "a run would have refused to go on, too";
}

TEST(DatabaseInMemory, IsRefusedWhereWritingWouldBe) {
    SampleDatabase database;
    database.Close();
    {
        std::fstream file(database.Path(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(4096);
        file.write("rubbish", 7);
    }
    EXPECT_THROW(Database::Open(database.Path(), OpenMode::InMemory), Error);
    EXPECT_THROW(Database::Open(database.Path() / "no", OpenMode::InMemory), Error);
}

}  // namespace
}  // namespace jet::testing
