#include "jet/dialect/translate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "jet/dialect/names.h"
#include "jet/dialect/parser.h"
#include "jet/error.h"

namespace jet::dialect {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

const TableDefinition* FindTable(std::string_view name) {
    static const std::vector<TableDefinition> tables = {
        {"Albums",
         {{"ID", ColumnType::Long},
          {"Title", ColumnType::Text},
          {"Artist", ColumnType::Text},
          {"Added", ColumnType::Date},
          {"Group", ColumnType::Integer}},
         {}},
        {"Tracks",
         {{"ID", ColumnType::Long},
          {"Album", ColumnType::Long},
          {"Title", ColumnType::Text},
          {"File", ColumnType::Text},
          {"Never", ColumnType::Boolean}},
         {}},
    };
    for (const TableDefinition& table : tables)
        if (SameName(table.name, name)) return &table;
    return nullptr;
}

Translation Translate(std::string_view text) {
    const TokenList tokens = Tokenize(text);
    const Statement statement = ParseStatement(tokens);
    if (const auto* select = std::get_if<Select>(&statement))
        return TranslateQuery(*select, FindTable);
    if (const auto* update = std::get_if<Update>(&statement))
        return TranslateUpdate(*update, FindTable);
    if (const auto* deletion = std::get_if<Delete>(&statement))
        return TranslateDelete(*deletion, FindTable);
    return TranslateInsert(std::get<Insert>(statement), FindTable);
}

std::string Fault(std::string_view text, ErrorKind kind) {
    try {
        Translate(text);
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), kind) << error.what();
        return error.what();
    }
    ADD_FAILURE() << "no error: " << text;
    return "";
}

TEST(Parse, NamesThePlaceOfAFault) {
    const auto fault = [](std::string_view text) { return Fault(text, ErrorKind::Syntax); };
    EXPECT_THAT(fault("SELECT * FORM Albums"), HasSubstr("column 10 near 'FORM'"));
    EXPECT_THAT(fault("SELECT * FROM Albums WHERE"), HasSubstr("column 27 at the end"));
    EXPECT_THAT(fault("SELECT * FROM Albums WHERE (ID=1"), HasSubstr("')' is expected"));
    EXPECT_THAT(fault("SELECT FROM Albums"), HasSubstr("near 'FROM'"));
    EXPECT_THAT(fault("SELECT ID FROM Albums WHERE Title=\"a\"b\""), HasSubstr("no end"));
    EXPECT_THAT(fault("DROP TABLE Albums"), HasSubstr("SELECT, INSERT, UPDATE or DELETE"));
    EXPECT_THAT(fault("SELECT ID FROM Albums; SELECT 1"), HasSubstr("near 'SELECT'"));
    EXPECT_THAT(fault("SELECT Foo(ID) FROM Albums"), HasSubstr("undefined function"));
    EXPECT_THAT(fault("SELECT Left(Title) FROM Albums"), HasSubstr("number of arguments"));
    EXPECT_THAT(fault("DELETE ID FROM Albums"), HasSubstr("* is expected"));
    EXPECT_THAT(fault("SELECT ID FROM Albums WHERE Max(ID)=1"), HasSubstr("cannot stand here"));
    EXPECT_THAT(fault("INSERT INTO Albums (ID, Title) VALUES (1)"), HasSubstr("not the same"));
}

TEST(Parse, RefusesWhatWouldExhaustTheStack) {
    const std::string deep = std::string(100000, '(') + "1" + std::string(100000, ')');
    Fault("SELECT " + deep, ErrorKind::Syntax);
    std::string chain = "SELECT 1";
    for (int i = 0; i < 100000; ++i)
        chain += "+1";
    Fault(chain, ErrorKind::Syntax);
    Fault("SELECT " + std::string(100000, '-') + "1", ErrorKind::Syntax);
    Fault("SELECT * FROM " + std::string(100000, '('), ErrorKind::Syntax);
    std::string nots = "SELECT ID FROM Albums WHERE ";
    for (int i = 0; i < 100000; ++i)
        nots += "NOT ";
    Fault(nots + "ID=1", ErrorKind::Syntax);
}

TEST(Translate, NamesUnknownTablesAndFields) {
    EXPECT_THAT(Fault("SELECT Nope FROM Albums", ErrorKind::NotFound),
                HasSubstr("'Nope' in Albums"));
    EXPECT_THAT(Fault("SELECT * FROM Nope", ErrorKind::NotFound), HasSubstr("'Nope'"));
    EXPECT_THAT(Fault("SELECT Tracks.ID FROM Albums", ErrorKind::NotFound),
                HasSubstr("'Tracks.ID'"));
    EXPECT_THAT(Fault("SELECT Title FROM Albums INNER JOIN Tracks ON Albums.ID=Tracks.Album",
                      ErrorKind::Syntax),
                HasSubstr("more than one table"));
    EXPECT_THAT(Fault("SELECT * FROM Albums, Albums", ErrorKind::Syntax), HasSubstr("two tables"));
}

TEST(Translate, TurnsComparedValuesIntoParameters) {
    const Translation query =
        Translate("SELECT ID FROM Albums WHERE Title=\"x' OR 1=1\" AND [Group]=5");
    EXPECT_EQ(query.parameters.size(), 2U);
    EXPECT_THAT(query.sql, Not(HasSubstr("1=1")));
    EXPECT_THAT(query.sql, Not(HasSubstr("5")));
}

TEST(Translate, NotesWhichColumnsAreLookedUp) {
    const Translation query = Translate(
        "SELECT Tracks.ID FROM Albums INNER JOIN Tracks ON Albums.ID = Tracks.Album WHERE "
        "Tracks.File Like \"%x\" AND Albums.Artist=\"y\"");
    ASSERT_EQ(query.tables.size(), 2U);
    EXPECT_THAT(query.tables[0].equalColumns, ElementsAre(0, 2));
    EXPECT_THAT(query.tables[1].equalColumns, ElementsAre(1));
    EXPECT_THAT(query.tables[1].suffixColumns, ElementsAre(3));
    EXPECT_THAT(query.sql, ::testing::HasSubstr("likelihood(jet_suffix("));
}

TEST(Translate, AsksSingleRowsWhatHoldsForWholeGroups) {
    const Translation query = Translate(
        "SELECT Artist FROM Albums WHERE Artist In (SELECT Artist FROM Albums AS Tmp GROUP BY "
        "Artist, Title HAVING Count(*) > 1 AND Title = Albums.Title)");
    ASSERT_EQ(query.tables.size(), 2U);
    EXPECT_THAT(query.tables[1].equalColumns, ElementsAre(1));
    EXPECT_THAT(query.sql, HasSubstr("WHERE (s1.\"Title\"=s0.\"Title\") GROUP BY"));
}

TEST(Translate, KnowsTheKindOfEachResult) {
    const Translation query = Translate(
        "SELECT ID, Title, Added, ID > 5, Count(*), Max(Added), Left(Title, 1), Added + 1, "
        "Added - Added FROM Albums GROUP BY ID, Title, Added");
    std::vector<ValueKind> kinds;
    for (const ResultColumn& column : query.columns)
        kinds.push_back(column.kind);
    EXPECT_THAT(kinds, ElementsAre(ValueKind::Number, ValueKind::Text, ValueKind::Date,
                                   ValueKind::Boolean, ValueKind::Number, ValueKind::Date,
                                   ValueKind::Text, ValueKind::Date, ValueKind::Number));
}

TEST(Translate, NamesTheResults) {
    const Translation query = Translate(
        "SELECT Albums.title, Tracks.Title, Len(Artist), Artist AS Who, Count(*) FROM Albums INNER "
        "JOIN Tracks ON Albums.ID = Tracks.Album");
    std::vector<std::string> names;
    for (const ResultColumn& column : query.columns)
        names.push_back(column.name);
    EXPECT_THAT(names, ElementsAre("Albums.title", "Tracks.Title", "Expr1000", "Who", "Expr1001"));
}

TEST(Translate, QuotesNames) {
    EXPECT_EQ(QuotedName("a\"b"), "\"a\"\"b\"");
    EXPECT_EQ(TableName("SQLite_x"), "\"[SQLite_x]\"");
}

TEST(Translate, LeavesADeletionFromAJoinWithoutItsTableAlone) {
    EXPECT_THAT(Fault("DELETE * FROM Albums INNER JOIN Tracks ON Albums.ID=Tracks.Album",
                      ErrorKind::Syntax),
                HasSubstr("must name the table"));
}

}  // namespace

}  // namespace jet::dialect
