#include <gtest/gtest.h>

#include "jet/check.h"
#include "tests/jet/engine/sample_database.h"

namespace jet::testing {
namespace {

std::string Refusal(SampleDatabase& database, const std::string& sql) {
    try {
        database.Execute(sql);
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

std::string Faults(SampleDatabase& database) {
    database.Close();
    std::string faults;
    for (const CheckFault& fault : CheckFile(database.Path()).faults)
        faults += fault.text + '\n';
    faults += StructuralFaults(database.Path());
    database.Reopen();
    return faults;
}

TableDefinition Definition(SampleDatabase& database, const std::string& table) {
    for (const TableDefinition& definition : database->Tables())
        if (definition.name == table) return definition;
    return {};
}

TEST(CreateTable, MakesFieldsOfAllTypes) {
    SampleDatabase database;
    database.Execute(
        "CREATE TABLE [All Types] (ID COUNTER CONSTRAINT Key1 PRIMARY KEY, a YESNO, b BYTE, c "
        "SHORT,"
        " d LONG NOT NULL, e CURRENCY, f SINGLE, g DOUBLE, h DATETIME, i BINARY(20), j TEXT(30) "
        "UNIQUE, k LONGBINARY, l MEMO, m GUID, n DECIMAL(10,3), CONSTRAINT Two UNIQUE (c, d))");
    const TableDefinition made = Definition(database, "All Types");
    ASSERT_EQ(made.columns.size(), 15U);
    const ColumnType types[] = {ColumnType::Long,    ColumnType::Boolean, ColumnType::Byte,
                                ColumnType::Integer, ColumnType::Long,    ColumnType::Currency,
                                ColumnType::Single,  ColumnType::Double,  ColumnType::Date,
                                ColumnType::Binary,  ColumnType::Text,    ColumnType::Ole,
                                ColumnType::Memo,    ColumnType::Guid,    ColumnType::Decimal};
    for (std::size_t i = 0; i < made.columns.size(); ++i)
        EXPECT_EQ(made.columns[i].type, types[i]) << made.columns[i].name;
    EXPECT_TRUE(made.columns[0].autoNumber);
    EXPECT_TRUE(made.columns[4].required);
    EXPECT_EQ(made.columns[9].size, 20);
    EXPECT_EQ(made.columns[10].size, 30);
    EXPECT_EQ(made.columns[14].precision, 10);
    EXPECT_EQ(made.columns[14].scale, 3);
    ASSERT_EQ(made.indexes.size(), 3U);
    EXPECT_EQ(made.indexes[0].name, "j");
    EXPECT_TRUE(made.indexes[1].primary);
    EXPECT_EQ(made.indexes[2].columns.size(), 2U);

    database.Execute("INSERT INTO [All Types] (d, j, n) VALUES (7, 'x', 1.5)");
    EXPECT_EQ(Refusal(database, "INSERT INTO [All Types] (j) VALUES ('y')"),
              "Field d of table All Types needs a value.");
    EXPECT_NE(Refusal(database, "INSERT INTO [All Types] (d, j) VALUES (8, 'X')"), "");
    EXPECT_EQ(Faults(database), "");
    EXPECT_EQ(database.Rows("SELECT ID, d, j, n FROM [All Types]"), "1|7|x|15/1");
    database.Close();
    EXPECT_EQ(Exported(database.Path(), "SpinnerGenre"), "0,\"Blues\"\n17,\"Rock\"\n");
}

TEST(CreateTable, SaysWhyNot) {
    SampleDatabase database;
    EXPECT_EQ(Refusal(database, "CREATE TABLE albums (x LONG)"),
              "Table albums cannot be made: a table or query of this name is there already.");
    EXPECT_EQ(Refusal(database, "CREATE TABLE MSysObjects (x LONG)"),
              "Table MSysObjects cannot be made: a table or query of this name is there already.");
    EXPECT_EQ(Refusal(database, "CREATE TABLE t (x LONG, X LONG)"),
              "Table t cannot be made: two fields have one name.");
    EXPECT_EQ(Refusal(database, "CREATE TABLE t (a LONG PRIMARY KEY, b LONG PRIMARY KEY)"),
              "Table t cannot be made: two indexes have one name.");
    EXPECT_EQ(Refusal(database, "CREATE TABLE t (a TEXT(300))"),
              "Syntax error at column 24 near '300': the size of a text (use MEMO for longer ones) "
              "is a number up to 255");
    EXPECT_NE(Refusal(database, "CREATE TABLE t (a LONG DEFAULT 5)").find("defaults"),
              std::string::npos);
    EXPECT_NE(Refusal(database, "CREATE TABLE t (a BLOB)").find("a type is expected here: YESNO"),
              std::string::npos);
    EXPECT_EQ(Faults(database), "");
}

TEST(CreateIndex, FindsTheRowsThatAreThere) {
    SampleDatabase database;
    for (int i = 0; i < 3000; ++i)
        database->Insert("SpinnerGenre",
                         std::vector<Database::Field>{{"GenreID", std::int64_t{3000 - i}},
                                                      {"Genre", "Genre " + std::to_string(i)}});
    database.Execute("CREATE INDEX ByBoth ON SpinnerGenre (Genre DESC, GenreID)");
    database.Execute("CREATE INDEX ByNumber ON SpinnerGenre (GenreID)");
    const TableDefinition table = Definition(database, "SpinnerGenre");
    ASSERT_EQ(table.indexes.size(), 2U);
    EXPECT_EQ(table.indexes[0].name, "ByBoth");
    EXPECT_FALSE(table.indexes[0].columns[0].ascending);
    EXPECT_EQ(Faults(database), "");
    EXPECT_EQ(database.Rows("SELECT Genre FROM SpinnerGenre WHERE GenreID=2500"), "Genre 500");
    database.Execute("UPDATE SpinnerGenre SET Genre='other' WHERE GenreID=2500");
    database.Execute("DELETE * FROM SpinnerGenre WHERE GenreID<1000");
    EXPECT_EQ(Faults(database), "");
}

TEST(CreateIndex, IsRefusedWhereRowsBreakItsRules) {
    SampleDatabase database;
    database.Execute("INSERT INTO SpinnerGenre VALUES (0, Null)");
    EXPECT_EQ(Refusal(database, "CREATE UNIQUE INDEX u ON SpinnerGenre (GenreID)"),
              "Index u of table SpinnerGenre cannot be made: two rows have the same value there.");
    EXPECT_EQ(Refusal(database, "CREATE INDEX p ON SpinnerGenre (Genre) WITH DISALLOW NULL"),
              "Index p of table SpinnerGenre cannot be made: a row has no value there.");
    EXPECT_EQ(Refusal(database, "CREATE INDEX o ON SpinnerGenre (nothing)"),
              "Cannot find the field 'nothing' in table 'SpinnerGenre'");
    EXPECT_EQ(Refusal(database, "CREATE INDEX PrimaryKey ON Albums (Title)"),
              "Index PrimaryKey of table Albums cannot be made: two indexes have one name.");
    EXPECT_EQ(Faults(database), "");
    database.Execute("CREATE UNIQUE INDEX u ON SpinnerGenre (GenreID, Genre)");
    database.Execute("CREATE INDEX n ON SpinnerGenre (Genre) WITH IGNORE NULL");
    EXPECT_NE(Refusal(database, "INSERT INTO SpinnerGenre VALUES (17, 'ROCK')"), "");
    EXPECT_EQ(Faults(database), "");
}

TEST(DropIndex, LeavesTheOthersAsTheyAre) {
    SampleDatabase database;
    const auto before = Definition(database, "Albums").indexes.size();
    database.Execute("CREATE INDEX One ON Albums (Title)");
    database.Execute("CREATE INDEX Same ON Albums (Title)");
    database.Execute("CREATE INDEX Other ON Albums (Artist)");
    EXPECT_EQ(Faults(database), "");
    database.Execute("DROP INDEX One ON Albums");
    EXPECT_EQ(Faults(database), "") << "another index goes by the same tree";
    database.Execute("DROP INDEX Same ON Albums");
    EXPECT_EQ(Faults(database), "");
    EXPECT_EQ(Definition(database, "Albums").indexes.size(), before + 1);
    database.Execute("INSERT INTO Albums (CDJID, Title) VALUES ('n', 'New')");
    EXPECT_EQ(Faults(database), "");
    EXPECT_NE(Refusal(database, "DROP INDEX One ON Albums"), "");
}

TEST(DropTable, GivesItsPagesBack) {
    SampleDatabase database;
    const auto fill = [&database] {
        database.Execute("CREATE TABLE Big (ID COUNTER PRIMARY KEY, Words MEMO, Name TEXT(50))");
        for (int i = 0; i < 300; ++i) {
            database->Insert("Big",
                             std::vector<Database::Field>{
                                 {"Words", std::string(static_cast<std::size_t>(i) * 20, 'w')},
                                 {"Name", "n" + std::to_string(i)}});
        }
    };
    fill();
    database->Flush();
    const auto size = std::filesystem::file_size(database.Path());
    database.Execute("DROP TABLE big");
    EXPECT_EQ(Faults(database), "");
    EXPECT_NE(Refusal(database, "SELECT * FROM Big"), "");
    fill();
    EXPECT_EQ(Faults(database), "");
    EXPECT_LE(std::filesystem::file_size(database.Path()), size + 4 * 4096);
    EXPECT_EQ(database.Rows("SELECT Count(*) FROM Big WHERE Len(Words)>100"), "294");
}

}  // namespace
}  // namespace jet::testing
