// A file that contradicts itself is not opened for writing.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <set>

#include "jet/check.h"
#include "tests/jet/engine/sample_database.h"
#include "tests/outside/mutants.h"
#include "tests/outside/shared_folder.h"
#include "tests/outside/temporary_folder.h"

namespace jet::testing {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t PageSize = 4096, RowCountOffset = 16;

void WriteBytes(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::size_t FilesIn(const fs::path& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

class DamagedFile : public ::testing::Test {
  protected:
    DamagedFile() {
        Database::Create(path_, LibraryTables());
        Database database = Database::Open(path_, OpenMode::ReadWrite);
        database.Execute("INSERT INTO Albums (CDJID, Title) VALUES ('1', 'One')");
        database.Execute("INSERT INTO Tracks (CDJID, Title) VALUES ('1', 'Song')");
        database.Flush();
    }

    /// Makes the row count of a table wrong, told by its place among those of the file.
    void SpoilRowCount(std::size_t table) {
        std::string bytes = outside::ContentOf(path_);
        constexpr std::size_t FirstUserPage = 6;
        std::size_t found = 0;
        for (std::size_t page = FirstUserPage; page < bytes.size() / PageSize; ++page)
            if (bytes[page * PageSize] == 2 && found++ == table)
                bytes[page * PageSize + RowCountOffset] ^= 0x20;
        WriteBytes(path_, bytes);
    }
    void SpoilGlobalMap() {
        // All pages of the file are free.
        std::string bytes = outside::ContentOf(path_);
        const std::size_t low = static_cast<unsigned char>(bytes[PageSize + 14]);
        const std::size_t high = static_cast<unsigned char>(bytes[PageSize + 15]);
        bytes[PageSize + (low | high << 8U) + 6] = '\xFF';
        WriteBytes(path_, bytes);
    }

    std::string Refusal(const NeededTables& needed) {
        const std::string before = outside::ContentOf(path_);
        std::string what;
        try {
            Database::Open(path_, OpenMode::ReadWrite, needed);
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::Damaged);
            what = error.what();
        }
        EXPECT_EQ(outside::ContentOf(path_), before);
        EXPECT_EQ(FilesIn(folder_.Path()), 1U);
        return what;
    }

    outside::TemporaryFolder folder_;
    fs::path path_ = folder_.Path() / "library.mdb";
};

TEST_F(DamagedFile, IsRefusedAsItIs) {
    EXPECT_EQ(Refusal({}), "");
    SpoilRowCount(1);
    const std::string what = Refusal({});
    EXPECT_EQ(what, path_.string() +
                        " is damaged: table Tracks: the definition counts 33 rows, there are 1. "
                        "Nothing was changed.");
    EXPECT_EQ(Refusal({{{"tracks", "Albums"}}}), what);
    SpoilRowCount(0);
    EXPECT_NE(Refusal({}).find(", and another fault. Nothing was changed."), std::string::npos);
}

TEST_F(DamagedFile, CanBeRead) {
    SpoilRowCount(1);
    Database database = Database::Open(path_, OpenMode::ReadOnly);
    EXPECT_EQ(Rows(database, "SELECT Title FROM Tracks"), "Song");
}

TEST_F(DamagedFile, IsWrittenInTablesThatAreNotConcerned) {
    SpoilRowCount(1);
    EXPECT_EQ(Refusal({{{"Albums"}}}), "");
    {
        Database database = Database::Open(path_, OpenMode::ReadWrite, {{{"Albums"}}});
        ASSERT_EQ(database.Damaged().size(), 1U);
        EXPECT_EQ(database.Damaged()[0].name, "Tracks");
        database.Execute("UPDATE Albums SET Title='Two'");
        for (const char* const sql :
             {"DELETE * FROM Tracks", "UPDATE tracks SET Title='x'",
              "DELETE * FROM Albums WHERE CDJID IN (SELECT CDJID FROM Tracks)",
              "INSERT INTO Tracks (CDJID) VALUES ('2')"}) {
            try {
                database.Execute(sql);
                ADD_FAILURE() << sql;
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), ErrorKind::Damaged) << sql;
                EXPECT_NE(std::string(error.what()).find("'Tracks' is damaged: table Tracks: "),
                          std::string::npos)
                    << error.what();
            }
        }
        EXPECT_THROW(database.OpenTable("Tracks"), Error);
    }
    const auto faults = CheckFile(path_).faults;
    ASSERT_EQ(faults.size(), 1U);
    EXPECT_EQ(faults[0].table, "Tracks");
    Database database = Database::Open(path_, OpenMode::ReadOnly);
    EXPECT_EQ(Rows(database, "SELECT Title FROM Albums"), "Two");
    EXPECT_EQ(Rows(database, "SELECT Title FROM Tracks"), "Song");
}

TEST_F(DamagedFile, IsRefusedForAllTablesWhereItIsTheFileThatIsWrong) {
    SpoilGlobalMap();
    EXPECT_NE(Refusal(NeededTables::None()).find("is in use and listed as free"),
              std::string::npos);
}

TEST_F(DamagedFile, MayHaveADefinitionThatNobodyCanReadIfNobodyNeedsIt) {
    std::string bytes = outside::ContentOf(path_);
    std::size_t definition = bytes.size() / PageSize;
    while (bytes[--definition * PageSize] != 2) {
    }
    bytes[definition * PageSize] = 1;
    WriteBytes(path_, bytes);
    const std::string table = CheckFile(path_).faults.at(0).table;
    EXPECT_NE(Refusal({}), "");
    EXPECT_NE(Refusal({{{table}}}), "");
    const std::string other = table == "Albums" ? "Tracks" : "Albums";
    Database database = Database::Open(path_, OpenMode::ReadWrite, {{{other}}});
    database.Execute("UPDATE " + other + " SET Title='new'");
    EXPECT_THROW(database.OpenTable(table), Error);
    EXPECT_EQ(database.Damaged().at(0).name, table);
}

/// All rows of all tables as texts, without one column of each table.
using Content = std::map<std::string, std::multiset<std::string>>;

Content ContentOf(const fs::path& path, const std::map<std::string, std::string>& without) {
    Content content;
    Database database = Database::Open(path, OpenMode::ReadOnly, NeededTables::None());
    for (const TableDefinition& table : database.Tables()) {
        const auto rows = database.OpenTable(table.name);
        const auto found = without.find(table.name);
        for (; !rows->IsEof(); rows->MoveNext()) {
            std::string row;
            for (std::size_t i = 0; i < rows->FieldCount(); ++i)
                if (found == without.end() || rows->FieldName(i) != found->second)
                    row += Show(rows->Get(i)) + '|';
            content[table.name].insert(std::move(row));
        }
    }
    return content;
}

std::size_t RowsIn(const Content& content) {
    std::size_t rows = 0;
    for (const auto& [name, table] : content)
        rows += table.size();
    return rows;
}

/// Changes a text in each row of each table and adds a row; what single changes are refused for is
/// no matter. The columns that were changed, by table.
std::map<std::string, std::string> Work(Database& database) {
    std::map<std::string, std::string> columns;
    for (const TableDefinition& table : database.Tables()) {
        const auto text = std::ranges::find_if(table.columns, [](const ColumnDefinition& column) {
            return column.type == ColumnType::Text && column.size >= 8;
        });
        if (text == table.columns.end()) continue;
        columns[table.name] = text->name;
        int number = 0;
        const auto attempt = [](const auto& action) {
            try {
                action();
            } catch (const Error& error) {
                EXPECT_NE(error.Kind(), ErrorKind::Damaged) << error.what();
            }
        };
        attempt([&] {
            const auto rows = database.OpenTable(table.name);
            for (; !rows->IsEof() && number < 60; rows->MoveNext()) {
                attempt([&] {
                    rows->Set(text->name, "new " + std::to_string(++number));
                    rows->Update();
                });
                rows->CancelUpdate();
            }
            attempt([&] {
                rows->AddNew();
                rows->Set(text->name, std::string("added"));
                rows->Update();
            });
        });
    }
    return columns;
}

struct Tally {
    int refused = 0, written = 0;
};

void TryMutant(const outside::Mutant& mutant, const fs::path& path, std::size_t rows,
               Tally& tally) {
    WriteBytes(path, mutant.bytes);
    std::optional<std::map<std::string, std::string>> changed;
    Content before;
    try {
        Database database = Database::Open(path, OpenMode::ReadWrite);
        before = ContentOf(path, {});
        changed = Work(database);
        database.Flush();
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::Damaged) << error.what();
        EXPECT_FALSE(changed) << error.what();
    }
    EXPECT_EQ(FilesIn(path.parent_path()), 1U);
    if (!changed) {
        ++tally.refused;
        EXPECT_EQ(outside::ContentOf(path), mutant.bytes);
        return;
    }
    ++tally.written;
    for (const CheckFault& fault : CheckFile(path).faults)
        ADD_FAILURE() << fault.text;
    EXPECT_GE(RowsIn(before), rows);
    const Content after = ContentOf(path, *changed);
    WriteBytes(path, mutant.bytes);
    for (const auto& [name, table] : ContentOf(path, *changed)) {
        const auto found = after.find(name);
        EXPECT_TRUE(found != after.end() && std::ranges::includes(found->second, table)) << name;
    }
}

TEST(AMutant, IsRefusedAsItIsOrWrittenWithoutHarm) {
    const outside::TemporaryFolder folder;
    const fs::path path = folder.Path() / "mutant.mdb";
    Database::Create(path, LibraryTables());
    {
        Database database = Database::Open(path, OpenMode::ReadWrite);
        for (int i = 0; i < 150; ++i) {
            const std::string number = std::to_string(i);
            database.Execute("INSERT INTO Tracks (CDJID, Title, Track) VALUES ('" + number +
                             "', 'A song with the number " + number + "', " + number + ")");
            if (i % 10 == 0)
                database.Execute("INSERT INTO Albums (CDJID, Title) VALUES ('" + number +
                                 "', 'Album " + number + "')");
        }
        database.Execute("DELETE * FROM Tracks WHERE Track=7");
    }
    const std::string whole = outside::ContentOf(path);
    const std::size_t rows = RowsIn(ContentOf(path, {}));
    Tally tally;
    for (std::uint32_t seed = 0; seed < outside::MutantCount(300); ++seed) {
        const outside::Mutant mutant = outside::MutantOf(whole, seed);
        SCOPED_TRACE(mutant.where);
        TryMutant(mutant, path, rows, tally);
    }
    EXPECT_GT(tally.refused, tally.written);
    EXPECT_GT(tally.written, 0);
}

class MutantOfASample : public ::testing::TestWithParam<fs::path> {};

TEST_P(MutantOfASample, IsRefusedAsItIsOrWrittenWithoutHarm) {
    const outside::TemporaryFolder folder;
    const fs::path path = folder.Path() / "mutant.mdb";
    const std::string whole = outside::ContentOf(GetParam());
    WriteBytes(path, whole);
    try {
        Database::Open(path, OpenMode::ReadWrite);
    } catch (const Error&) {
        EXPECT_EQ(outside::ContentOf(path), whole) << "refused, and left as it is";
        return;
    }
    const std::size_t rows = RowsIn(ContentOf(path, {}));
    Tally tally;
    for (std::uint32_t seed = 0; seed < outside::MutantCount(15); ++seed) {
        const outside::Mutant mutant = outside::MutantOf(whole, seed);
        SCOPED_TRACE(mutant.where);
        TryMutant(mutant, path, rows, tally);
    }
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(MutantOfASample);
INSTANTIATE_TEST_SUITE_P(Fixtures, MutantOfASample, ::testing::ValuesIn(outside::SampleDatabases()),
                         [](const auto& tested) {
                             std::string name = tested.param.stem().string();
                             for (char& letter : name)
                                 if (std::isalnum(static_cast<unsigned char>(letter)) == 0)
                                     letter = '_';
                             return name;
                         });

}  // namespace

}  // namespace jet::testing
