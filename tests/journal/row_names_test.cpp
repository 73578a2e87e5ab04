#include "app/journal/row_names.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "jukebox/jukebox_database.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/open_database.h"

namespace quillon {
namespace {

RowChange ChangeOfRow(const std::string& table, std::int64_t number) {
    return {.table = table,
            .key = {{"ID", number}},
            .fields = {{"Number", std::int64_t{1}, std::int64_t{2}}}};
}

class RowNamesTest : public testing::Test {
  protected:
    RowNamesTest() {
        CreateJukeboxDatabase(file_);
        connection_ = support::OpenDatabase(file_);
        connection_->Execute(
            "INSERT INTO Albums (ID, CDJID, Artist, Title) VALUES (5, \"C1\", \"Ann\", \"First\")");
        connection_->Execute(
            "INSERT INTO Tracks (ID, CDJID, SoundFile) "
            "VALUES (5, \"C1\", \"D:\\a.mp3\")");
    }

    outside::TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.Path() / "x.mdb";
    std::unique_ptr<Connection> connection_;
};

const std::vector<RowChange>& Changes() {
    static const std::vector<RowChange> changes{ChangeOfRow("Albums", 5), ChangeOfRow("Tracks", 5),
                                                ChangeOfRow("Tracks", 6)};
    return changes;
}

void ExpectNames(const RowNames& names) {
    EXPECT_EQ(names.Of(Changes()[0]), "Ann - First");
    EXPECT_EQ(names.Of(Changes()[1]), "D:\\a.mp3");
    EXPECT_EQ(names.Of(Changes()[2]), "");
}

TEST_F(RowNamesTest, AreThoseOfAnOpenDatabase) {
    RowNames::Rows rows;
    for (const RowChange& change : Changes())
        RowNames::AddUnnamed(change, rows);
    ExpectNames(RowNames(*connection_, rows));
}

TEST_F(RowNamesTest, AreThoseOfADatabaseThatNobodyHas) {
    connection_.reset();
    ExpectNames(RowNames(file_, Changes()));
}

TEST_F(RowNamesTest, AreNoneWhereThereIsNoDatabase) {
    EXPECT_EQ(RowNames(folder_.Path() / "none.mdb", Changes()).Of(Changes()[0]), "");
}

}  // namespace
}  // namespace quillon
