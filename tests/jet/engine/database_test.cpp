#include "jet/database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/jet/engine/sample_database.h"

namespace jet::testing {

namespace {

using ::testing::HasSubstr;

std::string ErrorOf(SampleDatabase& database, const std::string& statement, ErrorKind kind) {
    try {
        database.Execute(statement);
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), kind) << error.what();
        return error.what();
    }
    ADD_FAILURE() << "no error: " << statement;
    return "";
}

TEST(Database, TellsTheNumberOfRowsThatAStatementConcerned) {
    SampleDatabase database;
    EXPECT_EQ(database->Execute("UPDATE Albums SET Tracks = 0 WHERE Player=1001"), 2);
    EXPECT_EQ(database->Execute("DELETE * FROM Tracks WHERE Artist=\"Ann\""), 2);
    EXPECT_EQ(database->Execute("INSERT INTO SpinnerGenre VALUES (1, 'x')"), 1);
    EXPECT_EQ(database->Execute("DELETE * FROM Tracks WHERE Artist=\"Ann\""), 0);
}

TEST(Database, NamesWhatAStatementDoesNotFind) {
    SampleDatabase database;
    EXPECT_THAT(ErrorOf(database, "DELETE * FROM Nowhere", ErrorKind::NotFound),
                HasSubstr("'Nowhere'"));
    EXPECT_THAT(ErrorOf(database, "UPDATE Albums SET Nothing = 1", ErrorKind::NotFound),
                HasSubstr("'Nothing'"));
    EXPECT_THAT(ErrorOf(database, "DELETE * FROM Albums WHERE Tracks.ID = 1", ErrorKind::NotFound),
                HasSubstr("'Tracks.ID'"));
    EXPECT_THAT(ErrorOf(database, "INSERT INTO Albums (Foo) VALUES (1)", ErrorKind::NotFound),
                HasSubstr("'Foo'"));
}

TEST(Database, RefusesAValueWithAnUndoubledQuoteInside) {
    SampleDatabase database;
    ErrorOf(database, "DELETE * FROM Albums WHERE Title=\"7\" Single\"", ErrorKind::Syntax);
    EXPECT_EQ(database.Rows("SELECT Count(*) FROM Albums"), "3");
}

TEST(Database, UndoesAStatementThatFailsHalfWay) {
    SampleDatabase database;
    const std::string all = database.Rows("SELECT * FROM Albums");
    ErrorOf(database, "UPDATE Albums SET Tracks = 32765 + ID * 2", ErrorKind::Overflow);
    EXPECT_EQ(database.Rows("SELECT * FROM Albums"), all);
    // The second row meets the first one's number: its insertion is refused.
    ErrorOf(database, "INSERT INTO Albums (ID, Title) SELECT 4, Title FROM Albums",
            ErrorKind::Duplicate);
    EXPECT_EQ(database.Rows("SELECT * FROM Albums"), all);
    database.Close();
    EXPECT_EQ(StructuralFaults(database.Path()), "");
    database.Reopen();
    EXPECT_EQ(database.Rows("SELECT * FROM Albums"), all);
}

TEST(Database, OpenedForReadingRefusesChanges) {
    SampleDatabase database;
    database.Reopen(OpenMode::ReadOnly);
    EXPECT_EQ(database.Rows("SELECT Count(*) FROM Albums"), "3");
    ErrorOf(database, "DELETE * FROM Albums", ErrorKind::ReadOnly);
    const auto albums = database->OpenTable("Albums");
    albums->Set("Title", std::string("x"));
    EXPECT_THROW(albums->Update(), Error);
    EXPECT_EQ(database.Rows("SELECT Title FROM Albums WHERE ID=1"), "Blue");
}

TEST(Database, GivesTheFileUpWhenItIsClosedWhateverRecordSetsAreLeft) {
    SampleDatabase database;
    const auto albums = database->OpenTable("Albums");
    const auto titles = database->Query("SELECT Title FROM Albums");
    albums->Set("Title", std::string("lost"));
    database.Reopen();
    EXPECT_EQ(Rows(*titles), "Blue\nRed\nDisc");
    EXPECT_THROW(albums->Update(), Error);
    EXPECT_EQ(database.Rows("SELECT Title FROM Albums"), "Blue\nRed\nDisc");
}

TEST(Database, KeepsTextsThatAreHardToKeep) {
    SampleDatabase database;
    const std::string texts[] = {"",
                                 " ",
                                 "a'b\"c",
                                 "Stra\xC3\x9F"
                                 "e",
                                 "\xE6\x97\xA5\xE6\x9C\xAC",
                                 "\xF0\x9F\x8E\xB5",
                                 std::string(255, 'x')};
    const auto albums = database->OpenTable("Albums");
    for (const std::string& text : texts) {
        albums->AddNew();
        albums->Set("Title", text);
        albums->Update();
        albums->Filter("Title=\"" + std::string(text == "a'b\"c" ? "a'b\"\"c" : text) + "\"");
        EXPECT_EQ(Show(albums->Get("Title")), text);
    }
    albums->AddNew();
    albums->Set("Title", std::string("bad \xFF byte"));
    albums->Update();
    const std::string now = database.Rows("SELECT Title FROM Albums WHERE ID > 3");
    database.Reopen();
    EXPECT_EQ(database.Rows("SELECT Title FROM Albums WHERE ID > 3"), now);
}

TEST(Database, ComparesTextsWithoutLetterCaseInEveryScript) {
    SampleDatabase database;
    database.Execute("UPDATE Albums SET Title='\xC3\x84NDERUNG' WHERE ID=1");
    database.Execute("UPDATE Albums SET Title='A\xCC\x88nderung' WHERE ID=2");
    EXPECT_EQ(database.Rows("SELECT ID FROM Albums WHERE Title='\xC3\xA4nderung'"), "1");
    EXPECT_EQ(database.Rows("SELECT ID FROM Albums WHERE Title='anderung'"), "");
}

TEST(Database, AnotherProgramReadsWhatWasWritten) {
    SampleDatabase database;
    database.Execute("INSERT INTO SpinnerGenre VALUES (-5, \"Caf\xC3\xA9\")");
    database.Execute("DELETE * FROM SpinnerGenre WHERE GenreID=0");
    database.Close();
    EXPECT_EQ(Exported(database.Path(), "SpinnerGenre"), "17,\"Rock\"\n-5,\"Caf\xC3\xA9\"\n");
    EXPECT_EQ(StructuralFaults(database.Path()), "");
}

TEST(Database, ListsItsTables) {
    SampleDatabase database;
    std::string names;
    for (const TableDefinition& table : database->Tables())
        names += table.name + " ";
    EXPECT_EQ(names,
              "Albums Playlists Spinner SpinnerArtist SpinnerGenre SpinnerID3Differences Tracks ");
}

TEST(Database, FindsTheSameRowsInSmallAndLargeTables) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    const auto like = [](int number) {
        return "SELECT Tracks.ID FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
               "WHERE Tracks.SoundFile Like \"%\\song " +
               std::to_string(number) + ".mp3\" AND Albums.Player=1001";
    };
    for (int i = 0; i < 300; ++i) {
        tracks->AddNew();
        tracks->Set("CDJID", std::string(i % 2 == 0 ? "252E671073EC0001" : "A0B1C2"));
        tracks->Set("SoundFile", "D:\\Music\\Song " + std::to_string(i) + ".MP3");
        tracks->Set("Title", "Song " + std::to_string(i));
        tracks->Update();
        const std::string id = std::to_string(i + 6);
        EXPECT_EQ(database.Rows(like(i)), i % 2 == 0 ? id : "");
        EXPECT_EQ(database.Rows("SELECT ID FROM Tracks WHERE Title='SONG " + std::to_string(i) +
                                "' AND NeverPlay=False"),
                  id);
    }
    database.Execute("UPDATE Tracks SET SoundFile='D:\\x\\song 7.mp3' WHERE ID=6");
    EXPECT_EQ(database.Rows(like(7)), "6");
    EXPECT_EQ(database.Rows(like(0)), "");
}

TEST(Database, TheLargestIdentifierIsThatOfTheGroupAskedFor) {
    SampleDatabase database;
    const auto albums = database->OpenTable("Albums");
    for (int i = 100; i < 200; ++i) {
        albums->AddNew();
        albums->Set("CDJID", (i % 3 == 0 ? "252e671073ec0" : "FFFFFFFFFFFF0") + std::to_string(i));
        albums->Update();
    }
    const std::string query =
        "SELECT Max(Albums.CDJID) AS MaxOfCDJID, Left([cdjid],Len([cdjid])-4) AS Expr1 FROM "
        "Albums GROUP BY Left([cdjid],Len([cdjid])-4) HAVING "
        "(((Left([cdjid],Len([cdjid])-4))='252E671073EC'));";
    EXPECT_EQ(database.Rows(query), "252e671073ec0198|252e671073ec");
    database.Execute("DELETE * FROM Albums WHERE CDJID='252E671073EC0198'");
    EXPECT_EQ(database.Rows(query), "252e671073ec0195|252e671073ec");
}

}  // namespace

}  // namespace jet::testing
