#include "jukebox/jukebox_database.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>

#include "jet/check.h"
#include "jet/database.h"
#include "jukebox/database_needs.h"
#include "jukebox/genre_names.h"
#include "tests/app/program_test.h"
#include "tests/outside/shared_folder.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;
using jet::ColumnType;
using jet::TableDefinition;

const TableDefinition& Table(const std::vector<TableDefinition>& tables, std::string_view name) {
    for (const TableDefinition& table : tables)
        if (table.name == name) return table;
    throw std::out_of_range(std::string(name));
}

std::string IndexText(const TableDefinition& table, const jet::IndexDefinition& index) {
    std::string text = index.name + (index.primary ? " primary" : "") + ":";
    for (const jet::IndexColumn& column : index.columns)
        text += (column.ascending ? " " : " -") + table.columns[column.column].name;
    return text;
}

using JukeboxDatabase = ProgramTest;

TEST_F(JukeboxDatabase, IsWholeAndHasTheSevenTables) {
    CreateJukeboxDatabase(Path("new.mdb"));
    EXPECT_TRUE(jet::CheckFile(Path("new.mdb")).faults.empty());
    const auto database = jet::Database::Open(Path("new.mdb"), jet::OpenMode::ReadOnly);
    const auto tables = database.Tables();
    std::set<std::string> names;
    for (const TableDefinition& table : tables)
        names.insert(table.name);
    EXPECT_EQ(names,
              (std::set<std::string>{"Albums", "Tracks", "Playlists", "Spinner", "SpinnerArtist",
                                     "SpinnerGenre", "SpinnerID3Differences"}));
    EXPECT_TRUE(MissingForTheTool(tables).empty());
}

TEST_F(JukeboxDatabase, HasTheTypesSizesAndIndexesThatItWasDefinedWith) {
    CreateJukeboxDatabase(Path("new.mdb"));
    const auto database = jet::Database::Open(Path("new.mdb"), jet::OpenMode::ReadOnly);
    const auto tables = database.Tables();
    for (const TableDefinition& wanted : JukeboxTables()) {
        const TableDefinition& table = Table(tables, wanted.name);
        ASSERT_EQ(table.columns.size(), wanted.columns.size()) << wanted.name;
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            EXPECT_EQ(table.columns[i].name, wanted.columns[i].name);
            EXPECT_EQ(table.columns[i].type, wanted.columns[i].type) << table.columns[i].name;
            EXPECT_EQ(table.columns[i].autoNumber, wanted.columns[i].autoNumber);
            if (wanted.columns[i].type == ColumnType::Text) {
                EXPECT_EQ(table.columns[i].size, wanted.columns[i].size);
            }
        }
        std::multiset<std::string> indexes, wantedIndexes;
        for (const auto& index : table.indexes)
            indexes.insert(IndexText(table, index));
        for (const auto& index : wanted.indexes)
            wantedIndexes.insert(IndexText(wanted, index));
        EXPECT_EQ(indexes, wantedIndexes) << wanted.name;
    }
}

TEST(JukeboxTables, AreKeyedAndIndexedForTheLookUpsOfARun) {
    const auto& tables = JukeboxTables();
    const auto indexes = [&tables](std::string_view name) {
        std::vector<std::string> texts;
        const TableDefinition& table = Table(tables, name);
        for (const auto& index : table.indexes)
            texts.push_back(IndexText(table, index));
        return texts;
    };
    using Texts = std::vector<std::string>;
    EXPECT_EQ(indexes("Albums"), (Texts{"PrimaryKey primary: ID", "CDJID: CDJID", "Player: Player",
                                        "Title: Title", "Artist: Artist"}));
    EXPECT_EQ(indexes("Tracks"),
              (Texts{"PrimaryKey primary: ID", "CDJID: CDJID", "Title: Title", "Artist: Artist"}));
    EXPECT_EQ(indexes("Spinner"), (Texts{"PrimaryKey primary: ID", "Artist: Artist"}));
    EXPECT_EQ(indexes("SpinnerGenre"), Texts{"PrimaryKey primary: GenreID"});
    EXPECT_TRUE(indexes("SpinnerID3Differences").empty());
}

TEST_F(JukeboxDatabase, NamesTheGenresThatATagCanCarry) {
    CreateJukeboxDatabase(Path("new.mdb"));
    auto database = jet::Database::Open(Path("new.mdb"), jet::OpenMode::ReadOnly);
    const auto rows = database.Query("SELECT GenreID, Genre FROM SpinnerGenre ORDER BY GenreID");
    std::int64_t id = 0;
    for (; !rows->IsEof(); rows->MoveNext(), ++id) {
        EXPECT_EQ(std::get<std::int64_t>(rows->Get("GenreID")), id);
        EXPECT_EQ(std::get<std::string>(rows->Get("Genre")),
                  StandardGenreNames.at(static_cast<std::size_t>(id)));
    }
    EXPECT_EQ(id, 148);
    EXPECT_EQ(StandardGenreNames[0], "Blues");
    EXPECT_EQ(StandardGenreNames[79], "Hard Rock");
    EXPECT_EQ(StandardGenreNames[147], "Synthpop");
}

TEST_F(JukeboxDatabase, RefusesAPathThatExists) {
    Write("old.mdb", "something");
    EXPECT_THROW(CreateJukeboxDatabase(Path("old.mdb")), jet::Error);
    EXPECT_EQ(Read("old.mdb"), "something");
    EXPECT_THROW(CreateJukeboxDatabase(Path("no folder/new.mdb")), jet::Error);
}

/// Databases of the jukebox software's own kind, where there are any at hand.
std::vector<fs::path> LibraryFixtures() {
    std::vector<fs::path> files = outside::SampleDatabases();
    std::erase_if(files, [](const fs::path& file) { return file.filename() != "empty.mdb"; });
    return files;
}

class LikeTheJukeboxSoftwares : public JukeboxDatabase,
                                public testing::WithParamInterface<fs::path> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(LikeTheJukeboxSoftwares);
INSTANTIATE_TEST_SUITE_P(Fixtures, LikeTheJukeboxSoftwares, testing::ValuesIn(LibraryFixtures()),
                         [](const auto& fixture) { return fixture.param.stem().string(); });

TEST_P(LikeTheJukeboxSoftwares, InTablesFieldsAndIndexes) {
    CreateJukeboxDatabase(Path("new.mdb"));
    const auto own = jet::Database::Open(Path("new.mdb"), jet::OpenMode::ReadOnly);
    const auto other = jet::Database::Open(GetParam(), jet::OpenMode::ReadOnly);
    const auto ownTables = own.Tables();
    for (const TableDefinition& wanted : other.Tables()) {
        const TableDefinition& table = Table(ownTables, wanted.name);
        ASSERT_EQ(table.columns.size(), wanted.columns.size()) << wanted.name;
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            EXPECT_EQ(table.columns[i].name, wanted.columns[i].name) << wanted.name;
            EXPECT_EQ(table.columns[i].type, wanted.columns[i].type) << wanted.name;
            if (wanted.columns[i].type == ColumnType::Text) {
                EXPECT_EQ(table.columns[i].size, wanted.columns[i].size) << wanted.name;
            }
        }
        std::multiset<std::string> indexes, wantedIndexes;
        for (const auto& index : table.indexes)
            indexes.insert(IndexText(table, index));
        for (const auto& index : wanted.indexes)
            wantedIndexes.insert(IndexText(wanted, index));
        EXPECT_EQ(indexes, wantedIndexes) << wanted.name;
    }
}

TEST(MissingForTheTool, FindsNothingWrongWithTheToolsOwnTables) {
    EXPECT_TRUE(MissingForTheTool(JukeboxTables()).empty());
}

TEST(MissingForTheTool, NamesTablesAndFieldsThatAreNotThere) {
    std::vector<TableDefinition> tables = JukeboxTables();
    std::erase_if(tables, [](const auto& table) { return table.name == "Spinner"; });
    tables[0].columns.erase(tables[0].columns.begin() + 2);
    tables[1].columns[2].type = ColumnType::Date;
    EXPECT_EQ(MissingForTheTool(tables),
              (std::vector<std::string>{"Table Albums has no field Title",
                                        "Field Track of table Tracks holds a date instead of a "
                                        "number",
                                        "The database has no table Spinner"}));
}

TEST(MissingForTheTool, TakesOtherLetterCasesAndWiderTypes) {
    std::vector<TableDefinition> tables = JukeboxTables();
    tables[0].name = "ALBUMS";
    tables[0].columns[1].name = "cdjid";
    tables[0].columns[4].type = ColumnType::Long;
    tables[1].columns[8].type = ColumnType::Text;
    EXPECT_TRUE(MissingForTheTool(tables).empty());
    EXPECT_EQ(MissingForTheTool({}).size(), 7U);
}

}  // namespace
}  // namespace quillon
