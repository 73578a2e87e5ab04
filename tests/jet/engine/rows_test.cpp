// Rows without SQL: read in the file's order, changed by their keys.

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/jet/engine/sample_database.h"

namespace jet::testing {

namespace {

using ::testing::ElementsAre;

/// Title and number of all tracks, and their keys.
std::vector<std::string> Scanned(SampleDatabase& database,
                                 std::vector<Database::RowKey>* keys = nullptr) {
    constexpr std::array<std::string_view, 2> Fields{"title", "Track"};
    std::vector<std::string> rows;
    database->Scan("tracks", Fields, [&](Database::RowKey key, std::span<Value> values) {
        rows.push_back(Show(values[0]) + "|" + Show(values[1]));
        if (keys != nullptr) keys->push_back(key);
    });
    return rows;
}

ErrorKind KindOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Error& error) {
        return error.Kind();
    }
    ADD_FAILURE() << "no error";
    return ErrorKind::NotSupported;
}

TEST(RowsByKey, AreReadInTheOrderOfTheFileWithTheFieldsThatWereAskedFor) {
    SampleDatabase database;
    std::vector<std::string> expected;
    const auto tracks = database->OpenTable("Tracks");
    for (; !tracks->IsEof(); tracks->MoveNext())
        expected.push_back(Show(tracks->Get("Title")) + "|" + Show(tracks->Get("Track")));
    EXPECT_EQ(Scanned(database), expected);
}

/// Whether statements have loaded the table before or load it afterwards.
TEST(RowsByKey, AreTheSameForStatements) {
    for (const bool isLoaded : {false, true}) {
        SampleDatabase database;
        database.Reopen();
        if (isLoaded) database.Rows("SELECT * FROM Tracks");
        std::vector<Database::RowKey> keys;
        const std::size_t count = Scanned(database, &keys).size();
        const std::vector<Database::Field> fields{{"TITLE", std::string("New")},
                                                  {"Track", std::int64_t{9}}};
        const Database::AddedRow added = database->Insert("Tracks", fields);
        EXPECT_GT(added.number, 0);
        database->Update("Tracks", keys[0], fields);
        EXPECT_TRUE(database->Has("Tracks", keys[1]));
        database->Delete("Tracks", keys[1]);
        EXPECT_FALSE(database->Has("Tracks", keys[1]));
        EXPECT_TRUE(database->Has("Tracks", keys[0]));
        EXPECT_EQ(database.Rows("SELECT Count(*) FROM Tracks WHERE Title='New' AND Track=9"), "2");
        EXPECT_EQ(
            database.Rows("SELECT Title FROM Tracks WHERE ID=" + std::to_string(added.number)),
            "New");
        EXPECT_EQ(Scanned(database).size(), count);
        database->Update("Tracks", added.key, std::vector<Database::Field>{{"Title", Null{}}});
        EXPECT_EQ(
            database.Rows("SELECT Title FROM Tracks WHERE ID=" + std::to_string(added.number)),
            "Null");
        database.Close();
        EXPECT_EQ(StructuralFaults(database.Path()), "");
    }
}

/// Whether statements have loaded the table before or not.
TEST(RowsByKey, AreAddedInGreatNumbersAsOneByOne) {
    for (const bool isLoaded : {false, true}) {
        SampleDatabase database;
        if (isLoaded) database.Rows("SELECT * FROM Tracks");
        constexpr std::array<std::string_view, 2> Fields{"TITLE", "Track"};
        const auto inserter = database->OpenInserter("tracks", Fields);
        std::array<Value, 2> values;
        std::int64_t last = 0;
        for (std::int64_t number = 1; number <= 300; ++number) {
            values[0] = "Many " + std::to_string(number);
            values[1] = number % 2 == 0 ? Value(number) : Value(Null{});
            const Database::AddedRow added = inserter->Insert(values);
            EXPECT_GT(added.number, last);
            last = added.number;
        }
        values = {std::string(300, 'x'), std::int64_t{1}};
        EXPECT_EQ(KindOf([&] { inserter->Insert(values); }), ErrorKind::TooLong);
        EXPECT_EQ(database.Rows("SELECT Title, Track FROM Tracks WHERE ID=" + std::to_string(last)),
                  "Many 300|300");
        EXPECT_EQ(database.Rows("SELECT Count(*) FROM Tracks WHERE Title Like 'Many%'"), "300");
        EXPECT_EQ(
            database.Rows("SELECT Count(*) FROM Tracks WHERE Title Like 'Many%' AND Track Is Null"),
            "150");
        database.Close();
        EXPECT_EQ(StructuralFaults(database.Path()), "");
    }
}

TEST(RowsByKey, AreNotAddedToATableOrFieldThatIsNotThere) {
    SampleDatabase database;
    constexpr std::array<std::string_view, 1> Fields{"Nothing"};
    EXPECT_EQ(KindOf([&] { database->OpenInserter("Tracks", Fields); }), ErrorKind::NotFound);
    EXPECT_EQ(KindOf([&] { database->OpenInserter("Nowhere", {}); }), ErrorKind::NotFound);
}

TEST(RowsByKey, AreRefusedWhatStatementsAreRefused) {
    SampleDatabase database;
    std::vector<Database::RowKey> keys;
    const std::vector<std::string> before = Scanned(database, &keys);
    const std::vector<Database::Field> tooLong{{"Track", std::int64_t{5}},
                                               {"Title", std::string(300, 'x')}};
    const std::vector<Database::Field> unknown{{"Nothing", Null{}}};
    EXPECT_EQ(KindOf([&] { database->Insert("Tracks", tooLong); }), ErrorKind::TooLong);
    EXPECT_EQ(KindOf([&] { database->Update("Tracks", keys[0], tooLong); }), ErrorKind::TooLong);
    EXPECT_EQ(KindOf([&] { database->Update("Tracks", keys[0], unknown); }), ErrorKind::NotFound);
    EXPECT_EQ(KindOf([&] { database->Delete("Nowhere", keys[0]); }), ErrorKind::NotFound);
    database->Delete("Tracks", keys[0]);
    EXPECT_EQ(KindOf([&] { database->Delete("Tracks", keys[0]); }), ErrorKind::NotFound);
    EXPECT_EQ(Scanned(database), std::vector(before.begin() + 1, before.end()));
    database.Reopen(OpenMode::ReadOnly);
    EXPECT_EQ(KindOf([&] { database->Delete("Tracks", keys[2]); }), ErrorKind::ReadOnly);
}

}  // namespace

}  // namespace jet::testing
