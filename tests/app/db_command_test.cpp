#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

#include "jet/database.h"
#include "tests/app/pending_journal.h"
#include "tests/app/program_test.h"

namespace quillon {
namespace {

class DbCommand : public ProgramTest {
  protected:
    std::string File() const { return Path("cdj.mdb").string(); }
    ProgramResult Db(const std::string& action, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words{"db", action, File()};
        words.insert(words.end(), more.begin(), more.end());
        return CallProgram(words);
    }
};

TEST_F(DbCommand, CreatesADatabaseAndRefusesAnExistingPath) {
    const ProgramResult first = Db("create");
    EXPECT_EQ(first.status, 0) << first.err;
    EXPECT_NE(first.out.find(File()), std::string::npos);
    const std::string content = Read("cdj.mdb");
    const ProgramResult second = Db("create");
    EXPECT_EQ(second.status, 2);
    EXPECT_TRUE(second.err.starts_with("quillon: ")) << second.err;
    EXPECT_EQ(Read("cdj.mdb"), content);
}

TEST_F(DbCommand, ShowsRowsAsATable) {
    Db("create");
    const ProgramResult result =
        Db("query", {"SELECT GenreID, Genre FROM SpinnerGenre WHERE GenreID < 3 ORDER BY GenreID"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out,
              "GenreID  Genre\n"
              "-------  ------------\n"
              "      0  Blues\n"
              "      1  Classic Rock\n"
              "      2  Country\n"
              "(3 rows)\n");
}

TEST_F(DbCommand, ChangesRowsAndTellsHowMany) {
    Db("create");
    EXPECT_EQ(Db("exec", {"INSERT INTO Albums (CDJID, Title, Player, LocationValid) "
                          "VALUES ('1', 'Émile''s \"Best\"', 1001, True)"})
                  .out,
              "1 row\n");
    EXPECT_EQ(Db("exec", {"DELETE * FROM SpinnerGenre WHERE GenreID < 10"}).out, "10 rows\n");
    EXPECT_EQ(Db("exec", {"DELETE * FROM SpinnerGenre WHERE GenreID < 10"}).out, "0 rows\n");
    EXPECT_EQ(Db("query", {"SELECT Title, Artist, Player, LocationValid FROM Albums"}).out,
              "Title           Artist  Player  LocationValid\n"
              "--------------  ------  ------  -------------\n"
              "Émile's \"Best\"  <null>    1001  true\n"
              "(1 row)\n");
}

TEST_F(DbCommand, WritesJsonLines) {
    Db("create");
    Db("exec",
       {"INSERT INTO Albums (CDJID, Title, Artist, Player, LocationValid, DateAdded) VALUES "
        "('1', 'Émile''s', Null, 1001, True, #2/3/2006 8:00:00 AM#)"});
    Db("exec", {"INSERT INTO Albums (CDJID, Title, Artist) VALUES ('2', 'a\\b', '')"});
    EXPECT_EQ(
        Db("query",
           {"--json", "SELECT CDJID, Title, Artist, Player, LocationValid, DateAdded FROM Albums"})
            .out,
        "{\"CDJID\":\"1\",\"Title\":\"Émile's\",\"Artist\":null,\"Player\":1001,"
        "\"LocationValid\":true,\"DateAdded\":\"2006-02-03T08:00:00\"}\n"
        "{\"CDJID\":\"2\",\"Title\":\"a\\\\b\",\"Artist\":\"\",\"Player\":null,"
        "\"LocationValid\":false,\"DateAdded\":null}\n");
    EXPECT_EQ(Db("query", {"--json", "SELECT * FROM Albums WHERE CDJID='none'"}).out, "");
}

TEST_F(DbCommand, AQueryLeavesTheFileAsItIs) {
    Db("create");
    const std::string content = Read("cdj.mdb");
    EXPECT_EQ(Db("query", {"SELECT * FROM Albums"}).status, 0);
    EXPECT_EQ(Read("cdj.mdb"), content);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Folder()), {}), 1)
        << "no journal or lock stays beside it";
}

TEST_F(DbCommand, AQueryThatChangesRowsIsRefused) {
    Db("create");
    const ProgramResult result = Db("query", {"DELETE * FROM SpinnerGenre"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(
        Db("query", {"SELECT Count(*) AS N FROM SpinnerGenre"}).out.ends_with("\n148\n(1 row)\n"));
}

TEST_F(DbCommand, TellsAnErrorInOneLine) {
    Db("create");
    for (const char* const sql : {"SELECT", "SELECT nothing FROM Albums", "SELECT * FROM Nowhere",
                                  "SELECT\n*\nFROM\nNowhere", ""}) {
        const ProgramResult result = Db("query", {sql});
        EXPECT_EQ(result.status, 2) << sql;
        EXPECT_EQ(result.out, "") << sql;
        EXPECT_TRUE(result.err.starts_with("quillon: ")) << result.err;
        EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
    }
    EXPECT_EQ(Db("exec", {"UPDATE Albums SET Player=100000"}).status, 0) << "there are no rows";
    Db("exec", {"INSERT INTO Albums (CDJID) VALUES ('1')"});
    EXPECT_EQ(Db("exec", {"UPDATE Albums SET Player=100000"}).status, 2);
}

TEST_F(DbCommand, ChecksTheStructure) {
    Db("create");
    const ProgramResult whole = Db("check");
    EXPECT_EQ(whole.status, 0) << whole.out;
    EXPECT_TRUE(whole.out.starts_with(File() + ": OK; ")) << whole.out;

    // A row count in the definition of a table that is not true.
    std::string content = Read("cdj.mdb");
    std::size_t damaged = 0;
    for (std::size_t page = 0; page + 4096 <= content.size(); page += 4096) {
        if (content[page] != 2 || content[page + 1] != 1) continue;
        content[page + 16] = static_cast<char>(content[page + 16] + 1);
        ++damaged;
    }
    ASSERT_GT(damaged, 0U);
    Write("cdj.mdb", content);
    const ProgramResult faulty = Db("check");
    EXPECT_EQ(faulty.status, 1) << faulty.out;
    EXPECT_NE(faulty.out.find(" fault"), std::string::npos) << faulty.out;
}

TEST_F(DbCommand, ADatabaseThatIsDamagedIsNotChanged) {
    Db("create");
    std::string content = Read("cdj.mdb");
    // The number of genres, in the definition of their table.
    const std::string count{'\x94', '\0', '\0', '\0'};
    const std::size_t found = content.find(count + std::string(4, '\0') + '\1');
    ASSERT_NE(found, std::string::npos);
    ASSERT_EQ(found % 4096, 16U);
    content[found] = '\0';
    Write("cdj.mdb", content);
    const ProgramResult result = Db("exec", {"DELETE * FROM SpinnerGenre WHERE GenreID=5"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("'SpinnerGenre' is damaged: table SpinnerGenre: the definition "
                              "counts 0 rows, there are 148"),
              std::string::npos)
        << result.err;
    EXPECT_EQ(Read("cdj.mdb"), content);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Folder()), {}), 1);
    EXPECT_EQ(Db("exec", {"INSERT INTO Albums (CDJID) VALUES ('1')"}).status, 0) << "another table";
}

TEST_F(DbCommand, CheckReadsAFileWithItsJournalAndSaysSo) {
    Db("create");
    LeaveJournal(File());
    const std::string content = Read("cdj.mdb"), journal = Read("cdj.mdb.journal");
    const ProgramResult checked = Db("check");
    EXPECT_EQ(checked.status, 0);
    EXPECT_NE(checked.out.find("the journal " + File() + ".journal has not been carried out yet."),
              std::string::npos)
        << checked.out;
    EXPECT_NE(checked.out.find("other programs see the file without it"), std::string::npos);
    EXPECT_NE(checked.out.find("'quillon db recover " + File() + "'"), std::string::npos);
    EXPECT_NE(checked.out.find(File() + ": OK; "), std::string::npos);
    EXPECT_EQ(Read("cdj.mdb"), content);
    EXPECT_EQ(Read("cdj.mdb.journal"), journal);
}

TEST_F(DbCommand, RecoverCarriesOutTheJournalAndNothingElse) {
    Db("create");
    EXPECT_EQ(Db("recover").out, File() + ": there is no journal, nothing to do\n");
    LeaveJournal(File());
    std::string content = Read("cdj.mdb");
    const ProgramResult done = Db("recover");
    EXPECT_EQ(done.status, 0) << done.err;
    EXPECT_EQ(done.out, File() + ": completed; 1 page written from " + File() +
                            ".journal, which is removed\n");
    ++content[0xE00];
    EXPECT_TRUE(Read("cdj.mdb") == content);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Folder()), {}), 1);
    EXPECT_EQ(Db("check").out.find("journal"), std::string::npos);
    EXPECT_EQ(Db("recover").status, 0);
}

TEST_F(DbCommand, RecoverRefusesAJournalThatIsNotTheDatabases) {
    Db("create");
    LeaveJournal(File(), 5);
    const std::string content = Read("cdj.mdb"), journal = Read("cdj.mdb.journal");
    const auto expectRefused = [&](const std::string& words, const std::string& kept) {
        const ProgramResult refused = Db("recover");
        EXPECT_EQ(refused.status, 2);
        EXPECT_NE(refused.err.find(words), std::string::npos) << refused.err;
        EXPECT_TRUE(Read("cdj.mdb") == content);
        EXPECT_TRUE(Read("cdj.mdb.journal") == kept);
        EXPECT_EQ(Db("check").status, 0);
        EXPECT_NE(Db("check").out.find("The journal " + File() + ".journal "), std::string::npos);
    };
    expectRefused(".journal does not belong to " + File() + " as it is now", journal);
    Write("cdj.mdb.journal", journal.substr(0, 3000));
    expectRefused(".journal is not a complete journal", journal.substr(0, 3000));
}

TEST_F(DbCommand, RecoverIsRefusedWhileTheDatabaseIsOpen) {
    Db("create");
    const jet::Database open = jet::Database::Open(File(), jet::OpenMode::ReadWrite);
    const ProgramResult refused = Db("recover");
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find("is in use by "), std::string::npos) << refused.err;
    LeaveJournal(File());
    EXPECT_NE(Db("check").out.find("may be that of a change under way"), std::string::npos);
}

TEST_F(DbCommand, SaysWhatIsWrongWithAFileThatIsNoDatabase) {
    for (const std::string action : {"check", "recover", "query", "exec"}) {
        const std::vector<std::string> sql = action == "check" || action == "recover"
                                                 ? std::vector<std::string>{}
                                                 : std::vector<std::string>{"SELECT * FROM Albums"};
        std::filesystem::remove(Path("cdj.mdb"));
        EXPECT_EQ(Db(action, sql).status, 2);
        EXPECT_NE(Db(action, sql).err.find("cdj.mdb"), std::string::npos);
        EXPECT_FALSE(std::filesystem::exists(Path("cdj.mdb"))) << "it is not made";
        Write("cdj.mdb", "no database");
        EXPECT_EQ(Db(action, sql).status, 2);
        EXPECT_NE(Db(action, sql).err.find("cdj.mdb"), std::string::npos);
        EXPECT_EQ(Read("cdj.mdb"), "no database");
    }
}

}  // namespace
}  // namespace quillon
