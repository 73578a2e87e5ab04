#include <gtest/gtest.h>

#include "jet/statement.h"
#include "tests/jet/engine/sample_database.h"
#include "tests/outside/density.h"

namespace jet::testing {
namespace {

TEST(Parameters, StandForValuesWhateverTheyContain) {
    SampleDatabase database;
    const std::string quotes = "it's \"quoted\"; DROP TABLE Albums --";
    database->Execute("INSERT INTO Albums (CDJID, Title, Player) VALUES (:id, :title, :player)",
                      {{"id", std::string("p")}, {"TITLE", quotes}, {"player", std::int64_t{5}}});
    const auto rows =
        database->Query("SELECT CDJID, Player FROM Albums WHERE Title=:t", {{"t", quotes}});
    EXPECT_EQ(Rows(*rows), "p|5");
}

TEST(Parameters, KeepTheirType) {
    SampleDatabase database;
    const auto show = [&database](Value value) {
        return Rows(*database->Query("SELECT TOP 1 :v FROM Albums", {{"v", std::move(value)}}));
    };
    EXPECT_EQ(show(Null{}), "Null");
    EXPECT_EQ(show(true), "True");
    EXPECT_EQ(show(std::int64_t{-7}), "-7");
    EXPECT_EQ(show(2.5), "2.5");
    EXPECT_EQ(show(Date{38751}), "#2/3/2006#");
    EXPECT_EQ(show(Currency{12345}), "$12345");
    EXPECT_EQ(show(std::string("7")), "7");
    EXPECT_EQ(show(Bytes{1, 255}), Show(Bytes{1, 255}));
    EXPECT_EQ(Rows(*database->Query("SELECT Genre FROM SpinnerGenre WHERE GenreID=:n",
                                    {{"n", std::int64_t{17}}})),
              "Rock");
    EXPECT_EQ(Rows(*database->Query("SELECT Genre FROM SpinnerGenre WHERE Genre Like :n",
                                    {{"n", std::string("%ock")}})),
              "Rock");
    EXPECT_EQ(
        Rows(*database->Query("SELECT Genre FROM SpinnerGenre WHERE GenreID=:n", {{"n", Null{}}})),
        "");
}

TEST(Parameters, WithoutAValueAreAnError) {
    SampleDatabase database;
    try {
        database->Query("SELECT * FROM Albums WHERE ID = :id", {{"ID2", std::int64_t{1}}});
        FAIL();
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(),
                     "Syntax error at column 33 near ':id': this parameter has no value");
    }
}

TEST(LongStatements, AreRunUpToSixteenMegabytes) {
    SampleDatabase database;
    // The sanitizers need no such length to see what is done with memory.
    const std::size_t length = (15U << 20) / outside::StepUnderSanitizers(8);
    const std::string longest(length, 'x');
    database.Execute("INSERT INTO SpinnerArtist (Artist, ShortBio) VALUES ('long', '" + longest +
                     "')");
    EXPECT_EQ(database.Rows("SELECT Len(ShortBio) FROM SpinnerArtist WHERE Artist='long'"),
              std::to_string(longest.size()));
    std::string list = "SELECT Genre FROM SpinnerGenre WHERE GenreID IN (0";
    while (list.size() < length)
        list += ",1000000017";
    EXPECT_EQ(database.Rows(list + ",17)"), "Blues\nRock");
    try {
        database.Execute("DELETE * FROM Albums WHERE Title='" + std::string(16U << 20, 'y') + "'");
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::TooLong);
    }
}

TEST(SplitScript, EndsStatementsAtSemicolonsOutsideOfTexts) {
    const std::string script =
        "-- first; a comment\nSELECT ';' FROM [a;b];\n\n  -- next\n"
        "INSERT INTO t VALUES (\"x;'y\", #1/1/2000#) ;;\nDELETE * FROM t";
    std::string seen;
    for (const ScriptStatement& statement : SplitScript(script))
        seen += std::to_string(statement.line) + ": " + std::string(statement.text) + '\n';
    EXPECT_EQ(seen,
              "2: SELECT ';' FROM [a;b]\n5: INSERT INTO t VALUES (\"x;'y\", #1/1/2000#)\n"
              "6: DELETE * FROM t\n");
    EXPECT_TRUE(SplitScript(" \n-- nothing").empty());
}

TEST(HintsFor, TellsWhatAPatternDoesNotMean) {
    EXPECT_EQ(HintsFor("SELECT * FROM t WHERE a Like '%x%' AND b='*'"), std::vector<std::string>());
    EXPECT_EQ(HintsFor("SELECT * FROM t WHERE a Like 'x*'"),
              std::vector<std::string>{"Like 'x*': * and ? stand for themselves; % stands for any "
                                       "text, as in Like 'x%'"});
    EXPECT_EQ(
        HintsFor("SELECT * FROM t WHERE a Like :p", std::vector<NamedValue>{{"p", "%a%b"}}).size(),
        1U);
}

}  // namespace
}  // namespace jet::testing
