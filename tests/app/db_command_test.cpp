#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

#include "tests/app/temporary_folder.h"

namespace quillon {
namespace {

class DbCommand : public TemporaryFolder {
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

TEST_F(DbCommand, SaysWhatIsWrongWithAFileThatIsNoDatabase) {
    for (const char* const action : {"check", "query", "exec"}) {
        const std::vector<std::string> sql = action == std::string("check")
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
