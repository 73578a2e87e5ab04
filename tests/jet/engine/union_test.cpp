#include <gtest/gtest.h>

#include "tests/jet/engine/sample_database.h"

namespace jet::testing {
namespace {

TEST(Union, HasEachRowOnceInTheOrderOfItsValues) {
    SampleDatabase database;
    EXPECT_EQ(database.Rows("SELECT Artist FROM Tracks UNION SELECT Artist FROM Spinner"),
              "Ann\nBob\nCid")
        << "letter case makes no difference";
    EXPECT_EQ(database.Rows("SELECT Artist, Track FROM Tracks WHERE Artist='Ann' UNION "
                            "SELECT Artist, 7 FROM Albums"),
              "Ann|1\nAnn|2\nAnn|7\nBob|7\nCid|7");
}

TEST(Union, HasAllRowsPartByPart) {
    SampleDatabase database;
    EXPECT_EQ(database.Rows("SELECT Genre FROM SpinnerGenre UNION ALL SELECT Genre FROM Spinner "
                            "UNION ALL SELECT 'last' FROM SpinnerGenre WHERE GenreID=0"),
              "Blues\nRock\nNull\nJazz\nFolk\nlast");
}

TEST(Union, IsOrderedByItsLastOrderBy) {
    SampleDatabase database;
    EXPECT_EQ(database.Rows("SELECT Title AS Name, ID FROM Albums UNION ALL "
                            "SELECT Title, ID FROM Tracks WHERE Track=1 ORDER BY Name DESC"),
              "Sea|2\nRust|4\nRed|2\nDisc 1|5\nDisc|3\nBlue|1");
    EXPECT_EQ(database.Rows("SELECT ID FROM Albums UNION SELECT ID FROM Tracks ORDER BY 1 DESC"),
              "5\n4\n3\n2\n1");
}

TEST(Union, MakesOneKindOfEachField) {
    SampleDatabase database;
    EXPECT_EQ(database.Rows("SELECT #2/3/2006# AS x FROM SpinnerGenre UNION SELECT Null FROM "
                            "SpinnerGenre"),
              "Null\n#2/3/2006#");
    EXPECT_EQ(database.Rows("SELECT #2/3/2006# AS x FROM SpinnerGenre UNION SELECT Genre FROM "
                            "SpinnerGenre"),
              "2/3/2006\nBlues\nRock");
    EXPECT_EQ(
        database.Rows("SELECT GenreID FROM SpinnerGenre UNION SELECT Genre FROM SpinnerGenre"),
        "0\n17\nBlues\nRock");
}

TEST(Union, StandsWhereverASelectDoes) {
    SampleDatabase database;
    EXPECT_EQ(database.Rows("SELECT Title FROM Albums WHERE ID IN (SELECT ID FROM Spinner WHERE "
                            "ID=1 UNION SELECT 3 FROM SpinnerGenre)"),
              "Blue\nDisc");
    EXPECT_EQ(database.Rows("SELECT Count(*) FROM (SELECT Artist FROM Albums UNION ALL SELECT "
                            "Artist FROM Tracks) AS a"),
              "8");
    database.Execute(
        "INSERT INTO SpinnerGenre SELECT 40, Artist FROM Albums UNION SELECT 40, "
        "Genre FROM SpinnerGenre");
    EXPECT_EQ(database.Rows("SELECT Genre FROM SpinnerGenre WHERE GenreID=40"),
              "Ann\nBlues\nBob\nCid\nRock");
    const auto rows = database->Query(
        "SELECT Artist FROM Albums UNION SELECT Genre FROM "
        "SpinnerGenre");
    rows->Filter("Artist > 'B'");
    rows->Sort("Artist DESC");
    EXPECT_EQ(Rows(*rows), "Rock\nCid\nBob\nBlues");
}

TEST(Union, SaysWhatIsWrong) {
    SampleDatabase database;
    EXPECT_THROW(database.Rows("SELECT ID FROM Albums UNION SELECT ID, Title FROM Albums"), Error);
    EXPECT_THROW(database.Rows("SELECT ID FROM Albums ORDER BY ID UNION SELECT ID FROM Albums"),
                 Error);
    EXPECT_THROW(database.Rows("SELECT TOP 2 ID FROM Albums UNION SELECT ID FROM Albums"), Error);
    EXPECT_THROW(database->OpenUpdatable("SELECT ID FROM Albums UNION SELECT ID FROM Albums"),
                 Error);
}

}  // namespace
}  // namespace jet::testing
