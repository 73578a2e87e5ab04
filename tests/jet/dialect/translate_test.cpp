#include "jet/dialect/translate.h"

#include <algorithm>
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
    EXPECT_THAT(fault("ALTER TABLE Albums"), HasSubstr("SELECT, INSERT, UPDATE, DELETE"));
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
    EXPECT_THAT(Fault("SELECT *", ErrorKind::Syntax), HasSubstr("needs FROM"));
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
    EXPECT_THAT(query.tables[0].valueColumns, ElementsAre(2));
    EXPECT_THAT(query.tables[1].valueColumns, ElementsAre());
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

/// The columns that a statement looks at in its only table, in their order there.
std::vector<std::size_t> ColumnsOf(std::string_view text) {
    std::vector<std::size_t> columns = Translate(text).tables.at(0).columns;
    std::sort(columns.begin(), columns.end());
    return columns;
}

TEST(Translate, TellsWhichColumnsTheStatementLooksAt) {
    EXPECT_THAT(ColumnsOf("SELECT * FROM Tracks"), ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(ColumnsOf("SELECT Count(*) FROM Tracks"), ElementsAre());
    EXPECT_THAT(ColumnsOf("SELECT Title FROM Tracks WHERE Album = 3"), ElementsAre(1, 2));
    EXPECT_THAT(ColumnsOf("SELECT First(Title) AS t FROM Tracks GROUP BY Never HAVING Max(ID) > 2"),
                ElementsAre(0, 2, 4));
    EXPECT_THAT(ColumnsOf("SELECT ID FROM Tracks WHERE File Like '%x.mp3' ORDER BY Title"),
                ElementsAre(0, 2, 3));
    EXPECT_THAT(ColumnsOf("SELECT Max(ID) FROM Tracks GROUP BY Title HAVING Title = 'a'"),
                ElementsAre(0, 2));
    EXPECT_THAT(ColumnsOf("UPDATE Tracks SET Title = File WHERE ID = 1"), ElementsAre(0, 2, 3));
    EXPECT_THAT(ColumnsOf("DELETE * FROM Tracks WHERE Never"), ElementsAre(4));
    const Translation insert = Translate("INSERT INTO Tracks (Title) VALUES ('x')");
    EXPECT_FALSE(insert.tables.at(0).isRead);
    const Translation join =
        Translate("SELECT a.Title FROM Albums AS a INNER JOIN Tracks AS t ON a.ID = t.Album");
    EXPECT_THAT(join.tables.at(0).columns, ::testing::UnorderedElementsAre(0, 1));
    EXPECT_THAT(join.tables.at(1).columns, ElementsAre(1));
}

/// Columns that each row must equal a number in, and the number.
std::string KeysOf(const std::string& condition) {
    const std::string text = "SELECT Title, Album AS Renamed FROM Tracks WHERE " + condition;
    std::string shown;
    const std::vector<Literal> literals = Tokenize(text).literals;
    const Translation translation = Translate(text);
    for (const KeyCondition& key : translation.tables.at(0).keys) {
        const auto* number = std::get_if<std::int64_t>(&literals.at(key.literal));
        shown += std::to_string(key.column) + (key.negated ? "=-" : "=") +
                 (number ? std::to_string(*number) : "?") + " ";
    }
    return shown;
}

TEST(Translate, TellsWhichNumbersARowMustHaveToCount) {
    EXPECT_EQ(KeysOf("ID = 5"), "0=5 ");
    EXPECT_EQ(KeysOf("5 = Tracks.ID"), "0=5 ");
    EXPECT_EQ(KeysOf("(ID) = (-5)"), "0=-5 ");
    EXPECT_EQ(KeysOf("Title = 'x' AND (Never AND Album = 7) AND ID = 9"), "2=? 1=7 0=9 ");
    EXPECT_EQ(KeysOf("Renamed = 7"), "1=7 ");
    for (const char* const other :
         {"ID = 5 OR Album = 7", "NOT (ID = 5)", "ID <> 5", "ID = Album", "ID = 5 + 1", "ID >= 5",
          "ID + 1 = 5", "(ID = 5) = True", "ID IN (5)", "IIf(ID = 5, True, False)"})
        EXPECT_EQ(KeysOf(other), "") << other;
    // A row without a partner counts though it does not meet the condition of an outer join.
    const Translation outer =
        Translate("SELECT t.ID FROM Tracks AS t LEFT JOIN (SELECT 1 AS n) AS x ON t.ID = 5");
    EXPECT_TRUE(outer.tables.at(0).keys.empty());
}

}  // namespace

}  // namespace jet::dialect
