#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/jet/engine/sample_database.h"

namespace jet::testing {
namespace {

std::string ContentOf(const std::filesystem::path& file) {
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
}

TEST(Transaction, KeepsAllOfItWhenItIsCommitted) {
    SampleDatabase database;
    {
        Transaction transaction(database.Get());
        database.Execute("DELETE * FROM Tracks");
        database.Execute("INSERT INTO SpinnerGenre VALUES (18, 'Techno')");
        transaction.Commit();
    }
    database.Reopen();
    EXPECT_EQ(database.Rows("SELECT Count(*) FROM Tracks"), "0");
    EXPECT_EQ(database.Rows("SELECT Genre FROM SpinnerGenre WHERE GenreID=18"), "Techno");
    database.Close();
    EXPECT_EQ(StructuralFaults(database.Path()), "");
}

TEST(Transaction, TakesAllOfItBackWhenItIsNot) {
    SampleDatabase database;
    const std::string tracks = database.Rows("SELECT * FROM Tracks");
    database->Flush();
    const std::string content = ContentOf(database.Path());
    {
        const Transaction transaction(database.Get());
        database.Execute("DELETE * FROM Tracks WHERE Track=1");
        database.Execute("UPDATE Tracks SET Title='x'");
        database.Execute("INSERT INTO Tracks (Title) VALUES ('new')");
        EXPECT_NE(database.Rows("SELECT * FROM Tracks"), tracks);
    }
    EXPECT_EQ(database.Rows("SELECT * FROM Tracks"), tracks);
    EXPECT_EQ(ContentOf(database.Path()), content) << "the file was not touched";
    database.Execute("INSERT INTO Tracks (Title) VALUES ('new')");
    EXPECT_EQ(database.Rows("SELECT ID FROM Tracks WHERE Title='new'"), "6")
        << "the number that would have been handed out is free again";
}

TEST(Transaction, ReachesTheFileAsAWholeHoweverLongItTakes) {
    SampleDatabase database;
    database->Flush();
    const std::string content = ContentOf(database.Path());
    Transaction transaction(database.Get());
    const std::string text(4000, 'x');
    // More than fits into the memory that otherwise is enough to write a group.
    for (int i = 0; i < 6000; ++i)
        database->Insert("SpinnerArtist", std::vector<Database::Field>{{"ShortBio", text}});
    EXPECT_EQ(ContentOf(database.Path()), content);
    transaction.Commit();
    EXPECT_NE(ContentOf(database.Path()), content);
}

TEST(Transaction, IsForgottenWithTheDatabase) {
    SampleDatabase database;
    database->Flush();
    auto transaction = std::make_unique<Transaction>(database.Get());
    database.Execute("DELETE * FROM Tracks");
    transaction.reset();
    database.Reopen();
    EXPECT_EQ(database.Rows("SELECT Count(*) FROM Tracks"), "5");
}

TEST(Transaction, LetsResultsThatAreOpenComeToTheirEnd) {
    SampleDatabase database;
    const auto rows = database->Query("SELECT Title FROM Tracks ORDER BY ID");
    const auto cursor = database->OpenTable("Tracks");
    EXPECT_EQ(Show(cursor->Get("Title")), "Sky");
    {
        const Transaction transaction(database.Get());
        database.Execute("DELETE * FROM Tracks");
    }
    EXPECT_EQ(Rows(*rows), "Sky\nSea\nRose\nRust\nDisc 1");
    EXPECT_THROW(cursor->Set("Title", std::string("x")), Error);
    EXPECT_EQ(Show(database->OpenTable("Tracks")->Get("Title")), "Sky");
}

TEST(Transaction, IsTheOnlyOne) {
    SampleDatabase database;
    Transaction transaction(database.Get());
    EXPECT_THROW(const Transaction second(database.Get()), Error);
    EXPECT_THROW(database->Flush(), Error);
    transaction.Rollback();
    const Transaction third(database.Get());
}

TEST(Transaction, TakesBackTablesAndIndexesToo) {
    SampleDatabase database;
    {
        const Transaction transaction(database.Get());
        database.Execute("DROP TABLE Tracks");
        database.Execute("CREATE TABLE Tracks (ID COUNTER PRIMARY KEY, Name TEXT(20))");
        database.Execute("INSERT INTO Tracks (Name) VALUES ('x')");
        database.Execute("CREATE INDEX ByGenre ON SpinnerGenre (Genre)");
        EXPECT_EQ(database.Rows("SELECT * FROM Tracks"), "1|x");
    }
    EXPECT_EQ(database.Rows("SELECT Count(Title) FROM Tracks"), "5");
    EXPECT_THROW(database.Execute("DROP INDEX ByGenre ON SpinnerGenre"), Error);
    database.Close();
    EXPECT_EQ(StructuralFaults(database.Path()), "");
}

TEST(Transaction, EndsWithAChangeToATableThatFails) {
    SampleDatabase database;
    Transaction transaction(database.Get());
    database.Execute("DELETE * FROM Tracks");
    EXPECT_THROW(database.Execute("CREATE TABLE Albums (x LONG)"), Error);
    EXPECT_THROW(transaction.Commit(), Error);
    EXPECT_EQ(database.Rows("SELECT Count(*) FROM Tracks"), "5");
}

}  // namespace
}  // namespace jet::testing
