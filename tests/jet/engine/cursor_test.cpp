#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/jet/engine/sample_database.h"

namespace jet::testing {

namespace {

std::string TextOf(RecordSet& rows, const char* field) {
    return Show(rows.Get(field));
}

template <typename Action>
ErrorKind KindOfErrorIn(const Action& action, std::string* message = nullptr) {
    try {
        action();
    } catch (const Error& error) {
        if (message) *message = error.what();
        return error.Kind();
    }
    ADD_FAILURE() << "no error";
    return ErrorKind::NotSupported;
}

TEST(Cursor, StandsOnTheFirstRowInStorageOrder) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("tracks");
    EXPECT_FALSE(tracks->IsEmpty());
    EXPECT_EQ(TextOf(*tracks, "Title"), "Sky");
    std::string titles;
    for (; !tracks->IsEof(); tracks->MoveNext())
        titles += TextOf(*tracks, "title") + " ";
    EXPECT_EQ(titles, "Sky Sea Rose Rust Disc 1 ");
    EXPECT_FALSE(tracks->IsBof());
    tracks->MoveFirst();
    EXPECT_EQ(TextOf(*tracks, "Title"), "Sky");
}

TEST(Cursor, OfAnEmptyTableIsAtBothEnds) {
    SampleDatabase database;
    database.Execute("DELETE * FROM Tracks");
    const auto tracks = database->OpenTable("Tracks");
    EXPECT_TRUE(tracks->IsBof());
    EXPECT_TRUE(tracks->IsEof());
    EXPECT_EQ(KindOfErrorIn([&] { tracks->Get("Title"); }), ErrorKind::NoCurrentRow);
    EXPECT_EQ(KindOfErrorIn([&] { tracks->MoveNext(); }), ErrorKind::NoCurrentRow);
    EXPECT_EQ(KindOfErrorIn([&] { tracks->Set("Title", std::string("x")); }),
              ErrorKind::NoCurrentRow);
}

TEST(Cursor, FilterShowsOnlyMatchingRowsUntilItIsEmptied) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    tracks->Filter("ID=4");
    EXPECT_EQ(Rows(*tracks).substr(0, 7), "4|252E6");
    tracks->Filter("CDJID='252E671073EC0001' AND Track=1");
    EXPECT_EQ(TextOf(*tracks, "Title"), "Sea");
    tracks->Filter("ID=99");
    EXPECT_TRUE(tracks->IsEmpty());
    tracks->Filter("ID <> 0");
    tracks->Filter("");
    EXPECT_EQ(TextOf(*tracks, "ID"), "1");
}

TEST(Cursor, FilterTakesQuotedTextsOfBothKindsAndNumbersAsText) {
    SampleDatabase database;
    database.Execute("UPDATE Tracks SET Title = \"Ann's\" WHERE ID = 1");
    const auto tracks = database->OpenTable("Tracks");
    tracks->Filter("Title='Ann''s'");
    EXPECT_EQ(TextOf(*tracks, "ID"), "1");
    tracks->Filter("Title <>\"\"");
    EXPECT_EQ(TextOf(*tracks, "ID"), "1");
    tracks->Filter("Track='2'");
    EXPECT_EQ(TextOf(*tracks, "ID"), "1");
}

TEST(Cursor, FaultyFilterLeavesTheOldOne) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    tracks->Filter("ID=4");
    std::string message;
    EXPECT_EQ(KindOfErrorIn([&] { tracks->Filter("ID="); }, &message), ErrorKind::Syntax);
    EXPECT_EQ(KindOfErrorIn([&] { tracks->Filter("Nonsense=1"); }, &message), ErrorKind::NotFound);
    EXPECT_THAT(message, ::testing::HasSubstr("'Nonsense'"));
    EXPECT_EQ(TextOf(*tracks, "ID"), "4");
}

TEST(Cursor, SortOrdersTheRowsAndKeepsTheFilter) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    tracks->Filter("Track > 0");
    tracks->Sort("Artist desc, Track asc");
    std::string ids;
    for (; !tracks->IsEof(); tracks->MoveNext())
        ids += TextOf(*tracks, "ID") + " ";
    EXPECT_EQ(ids, "5 4 2 1 ");
}

TEST(Cursor, UpdateStoresWhatWasSet) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    tracks->Filter("ID=3");
    tracks->Set("Track", std::string(" 12 "));
    tracks->Set("Minutes", 2.5);
    tracks->Set("Seconds", 3.5);
    tracks->Set("NeverPlay", true);
    tracks->Set("DateAdded", Date{46341.25});
    EXPECT_EQ(TextOf(*tracks, "Track"), "12") << "the edit buffer shows";
    EXPECT_EQ(database.Rows("SELECT Track FROM Tracks WHERE ID=3"), "0") << "nothing stored yet";
    tracks->Update();
    const std::string expected = "12|2|4|True|#11/15/2026 6:00:00 AM#";
    const std::string query =
        "SELECT Track, Minutes, Seconds, NeverPlay, DateAdded FROM Tracks WHERE ID=3";
    EXPECT_EQ(database.Rows(query), expected);
    database.Reopen();
    EXPECT_EQ(database.Rows(query), expected);
}

TEST(Cursor, SetConvertsAtOnceAndRefusesWhatDoesNotFit) {
    SampleDatabase database;
    const auto albums = database->OpenTable("Albums");
    std::string message;
    EXPECT_EQ(KindOfErrorIn([&] { albums->Set("Tracks", std::int64_t{32768}); }, &message),
              ErrorKind::Overflow);
    EXPECT_THAT(message, ::testing::HasSubstr("'Tracks'"));
    EXPECT_EQ(KindOfErrorIn([&] { albums->Set("Tracks", std::string("many")); }),
              ErrorKind::TypeMismatch);
    EXPECT_EQ(KindOfErrorIn([&] { albums->Set("CDJID", std::string(51, 'x')); }),
              ErrorKind::TooLong);
    EXPECT_EQ(KindOfErrorIn([&] { albums->Set("DateAdded", std::string("soon")); }),
              ErrorKind::TypeMismatch);
    EXPECT_EQ(KindOfErrorIn([&] { albums->Set("None", std::string("x")); }), ErrorKind::NotFound);
    EXPECT_EQ(KindOfErrorIn([&] { albums->Set("ID", std::int64_t{9}); }), ErrorKind::NotSupported);
    albums->Set("Tracks", std::int64_t{-32768});
    albums->Set("CDJID", std::string(50, 'x'));
    albums->Update();
    EXPECT_EQ(database.Rows("SELECT Tracks, Len(CDJID) FROM Albums WHERE ID=1"), "-32768|50");
}

TEST(Cursor, AddNewMakesARowThatBecomesTheCurrentOneWithItsNumber) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    tracks->Filter("ID=2");
    tracks->AddNew();
    EXPECT_EQ(TextOf(*tracks, "Title"), "Null");
    EXPECT_EQ(TextOf(*tracks, "NeverPlay"), "False");
    tracks->Set("Title", std::string("New"));
    tracks->Update();
    EXPECT_EQ(TextOf(*tracks, "ID"), "6");
    EXPECT_EQ(TextOf(*tracks, "Title"), "New");
    tracks->Set("Title", std::string("Newer"));
    tracks->Update();
    EXPECT_EQ(database.Rows("SELECT Title FROM Tracks WHERE ID=6"), "Newer");
    EXPECT_EQ(database.Rows("SELECT Title FROM Tracks WHERE ID=2"), "Sea");
    tracks->MoveNext();
    EXPECT_TRUE(tracks->IsEof());
}

TEST(Cursor, NewRowShowsItsNumberBeforeItIsStored) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    tracks->AddNew();
    EXPECT_EQ(TextOf(*tracks, "ID"), "6");
    tracks->Set("Title", "Number " + TextOf(*tracks, "ID"));
    tracks->Update();
    EXPECT_EQ(database.Rows("SELECT ID, Title FROM Tracks WHERE ID=6"), "6|Number 6");
}

TEST(Cursor, NumberShownGoesToTheRowThatIsStoredFirst) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    tracks->AddNew();
    EXPECT_EQ(TextOf(*tracks, "ID"), "6");
    tracks->CancelUpdate();
    tracks->AddNew();
    EXPECT_EQ(TextOf(*tracks, "ID"), "6");
    database.Execute("INSERT INTO Tracks (Title) VALUES ('Quicker')");
    tracks->Update();
    EXPECT_EQ(TextOf(*tracks, "ID"), "7");
    EXPECT_EQ(database.Rows("SELECT Title FROM Tracks WHERE ID=6"), "Quicker");
}

TEST(Cursor, AddNewDuringAWalkPutsTheRowAtTheEnd) {
    SampleDatabase database;
    const auto genres = database->OpenTable("SpinnerGenre");
    EXPECT_EQ(TextOf(*genres, "Genre"), "Blues");
    genres->AddNew();
    genres->Set("Genre", std::string("Polka"));
    genres->Update();
    genres->MoveFirst();
    EXPECT_EQ(Rows(*genres), "0|Blues\n17|Rock\nNull|Polka");
}

TEST(Cursor, CancelUpdateAndMovingForgetTheEdit) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    tracks->Set("Title", std::string("x"));
    tracks->CancelUpdate();
    tracks->Update();
    EXPECT_EQ(TextOf(*tracks, "Title"), "Sky");
    tracks->AddNew();
    tracks->Set("Title", std::string("half"));
    tracks->Filter("ID=1");
    tracks->Update();
    EXPECT_EQ(database.Rows("SELECT Count(*) FROM Tracks"), "5");
    EXPECT_EQ(TextOf(*tracks, "Title"), "Sky");
}

TEST(Cursor, DeleteLeavesTheWalkGoingOn) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    for (; !tracks->IsEof(); tracks->MoveNext())
        if (TextOf(*tracks, "Artist") != "Bob") {
            tracks->Delete();
            EXPECT_EQ(KindOfErrorIn([&] { tracks->Get("ID"); }), ErrorKind::NoCurrentRow);
        }
    EXPECT_EQ(database.Rows("SELECT ID FROM Tracks"), "3\n4");
    database.Close();
    EXPECT_EQ(StructuralFaults(database.Path()), "");
}

TEST(Cursor, SkipsRowsThatAStatementDeletedMeanwhile) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    EXPECT_EQ(TextOf(*tracks, "ID"), "1");
    database.Execute("DELETE * FROM Tracks WHERE ID <= 3");
    EXPECT_EQ(KindOfErrorIn([&] { tracks->Set("Track", std::int64_t{1}); }),
              ErrorKind::NoCurrentRow);
    tracks->MoveNext();
    EXPECT_EQ(TextOf(*tracks, "ID"), "4");
}

TEST(Cursor, SeesWhatAStatementChangedInItsRow) {
    SampleDatabase database;
    const auto tracks = database->OpenTable("Tracks");
    EXPECT_EQ(TextOf(*tracks, "Title"), "Sky");
    database.Execute("UPDATE Tracks SET Title='Cloud' WHERE ID=1");
    EXPECT_EQ(TextOf(*tracks, "Title"), "Cloud");
}

TEST(UpdatableQuery, ChangesTheTableThatTheColumnBelongsTo) {
    SampleDatabase database;
    const auto rows = database->OpenUpdatable(
        "SELECT Tracks.Minutes, Tracks.Seconds, Albums.Title FROM Albums INNER JOIN Tracks ON "
        "Albums.CDJID = Tracks.CDJID WHERE (((Albums.Artist)=\"Ann\") AND "
        "((Albums.Title)=\"Blue\") AND ((Tracks.Title)=\"Sky\"))");
    EXPECT_FALSE(rows->IsEmpty());
    rows->Set("Minutes", std::int64_t{7});
    rows->Set("Title", std::string("Azure"));
    rows->Update();
    EXPECT_EQ(database.Rows("SELECT Minutes, Title FROM Tracks WHERE ID=1"), "7|Sky");
    EXPECT_EQ(database.Rows("SELECT Title FROM Albums WHERE ID=1"), "Azure");
    rows->MoveNext();
    EXPECT_TRUE(rows->IsEof());
}

TEST(UpdatableQuery, TakesFilterAndSortOnItsOwnFields) {
    SampleDatabase database;
    const auto rows = database->OpenUpdatable(
        "SELECT Tracks.Title AS Song, Albums.Title AS Album, Tracks.ID FROM Albums INNER JOIN "
        "Tracks ON Albums.CDJID = Tracks.CDJID");
    rows->Filter("Album='Blue'");
    rows->Sort("Song");
    EXPECT_EQ(Rows(*rows), "Sea|Blue|2\nSky|Blue|1");
}

TEST(UpdatableQuery, KeepsADeletedRowsNeighbours) {
    SampleDatabase database;
    const auto rows = database->OpenUpdatable("SELECT * FROM Tracks WHERE Artist='Bob'");
    rows->Delete();
    rows->MoveNext();
    EXPECT_EQ(TextOf(*rows, "Title"), "Rust");
    EXPECT_EQ(database.Rows("SELECT ID FROM Tracks"), "1\n2\n4\n5");
}

TEST(UpdatableQuery, RefusesRowsThatStandForNoStoredRow) {
    SampleDatabase database;
    for (const char* query :
         {"SELECT Artist FROM Tracks GROUP BY Artist", "SELECT DISTINCT Artist FROM Tracks",
          "SELECT Len(Title) FROM Tracks"})
        EXPECT_EQ(KindOfErrorIn([&] { database->OpenUpdatable(query); }), ErrorKind::NotSupported);
}

TEST(Query, IsNotDisturbedByChangesDuringItsWalk) {
    SampleDatabase database;
    const auto rows = database->Query("SELECT ID, Title FROM Tracks");
    const auto tracks = database->OpenTable("Tracks");
    std::string seen;
    for (; !rows->IsEof(); rows->MoveNext()) {
        seen += TextOf(*rows, "ID") + " ";
        tracks->Filter("ID=" + TextOf(*rows, "ID"));
        if (seen.size() < 3) database.Execute("DELETE * FROM Tracks WHERE ID > 3");
        tracks->AddNew();
        tracks->Set("Title", std::string("more"));
        tracks->Update();
    }
    EXPECT_EQ(seen, "1 2 3 4 5 ");
}

TEST(Query, CannotBeChanged) {
    SampleDatabase database;
    const auto rows = database->Query("SELECT ID FROM Tracks");
    EXPECT_EQ(KindOfErrorIn([&] { rows->Set("ID", std::int64_t{1}); }), ErrorKind::NotSupported);
    EXPECT_EQ(KindOfErrorIn([&] { rows->AddNew(); }), ErrorKind::NotSupported);
    EXPECT_EQ(KindOfErrorIn([&] { rows->Delete(); }), ErrorKind::NotSupported);
}

TEST(Query, TakesFilterAndSortOnGroups) {
    SampleDatabase database;
    const auto rows = database->Query("SELECT Artist, Count(*) AS n FROM Tracks GROUP BY Artist");
    rows->Filter("n > 1");
    rows->Sort("Artist desc");
    EXPECT_EQ(Rows(*rows), "Bob|2\nAnn|2");
    rows->MoveFirst();
    EXPECT_EQ(TextOf(*rows, "Artist"), "Bob");
}

TEST(Query, TellsFieldsOfTheSameNameApart) {
    SampleDatabase database;
    const auto rows = database->Query(
        "SELECT Albums.Title, Tracks.Title, Tracks.ID FROM Albums INNER JOIN Tracks ON "
        "Albums.CDJID = Tracks.CDJID");
    EXPECT_EQ(rows->FieldName(1), "Tracks.Title");
    EXPECT_EQ(TextOf(*rows, "tracks.title"), "Sky");
    EXPECT_EQ(TextOf(*rows, "Title"), "Blue");
    EXPECT_EQ(rows->FieldName(2), "ID");
}

}  // namespace

}  // namespace jet::testing
