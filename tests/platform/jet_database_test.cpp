#include "platform/portable/jet_database.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "jet/database.h"
#include "platform/portable/jet_values.h"
#include "tests/outside/file_marks.h"
#include "tests/outside/posix_test.h"
#include "tests/outside/temporary_folder.h"
#include "tests/platform/failure_of.h"

namespace quillon {
namespace {

constexpr const char* Prefix = "Provider = Microsoft.Jet.OLEDB.4.0; Data Source=";

TEST(ParseConnectionString, TakesPairsApart) {
    const ConnectionString plain = ParseConnectionString(std::string(Prefix) + "D:\\a b\\cdj.mdb");
    EXPECT_EQ(plain.provider, "Microsoft.Jet.OLEDB.4.0");
    EXPECT_EQ(plain.dataSource, "D:\\a b\\cdj.mdb");
    const ConnectionString more = ParseConnectionString(
        "PROVIDER=Microsoft.Jet.OLEDB.4.0;data source = D:\\x.mdb ;Persist Security Info=False;");
    EXPECT_EQ(more.provider, "Microsoft.Jet.OLEDB.4.0");
    EXPECT_EQ(more.dataSource, "D:\\x.mdb");
}

TEST(ParseConnectionString, QuotesHoldAnything) {
    EXPECT_EQ(ParseConnectionString("Data Source='D:\\a;b.mdb';Provider=x").dataSource,
              "D:\\a;b.mdb");
    EXPECT_EQ(ParseConnectionString("Data Source=\"D:\\it's.mdb\"").dataSource, "D:\\it's.mdb");
    EXPECT_EQ(ParseConnectionString("Data Source='D:\\it''s.mdb'; Provider=x").provider, "x");
    EXPECT_EQ(ParseConnectionString("Data Source='D:\\it''s.mdb'").dataSource, "D:\\it's.mdb");
    EXPECT_EQ(ParseConnectionString("Data Source='open").dataSource, "open");
}

TEST(ParseConnectionString, AnythingElseIsEmpty) {
    for (const char* const text : {"", ";;;", "nonsense", "=", "Data Source=", "x=y;z"}) {
        EXPECT_EQ(ParseConnectionString(text).provider, "") << text;
        EXPECT_EQ(ParseConnectionString(text).dataSource, "") << text;
    }
    EXPECT_EQ(ParseConnectionString(";; Provider=x").provider, "x");
}

TEST(JetValues, BecomePlatformValues) {
    EXPECT_EQ(FromJet(jet::Null{}, "F"), Value(Null{}));
    EXPECT_EQ(FromJet(true, "F"), Value(true));
    EXPECT_EQ(FromJet(std::int64_t{5}, "F"), Value(std::int64_t{5}));
    EXPECT_EQ(FromJet(jet::Date{2.5}, "F"), Value(DateTime{2.5}));
    EXPECT_EQ(FromJet(jet::Currency{12345}, "F"), Value(1.2345));
    EXPECT_EQ(FromJet(jet::Decimal{true, {0, 0, 0, 125}, 2}, "F"), Value(-1.25));
    EXPECT_EQ(FromJet(jet::Decimal{false, {0, 0, 1, 0}, 0}, "F"), Value(4294967296.0));
    EXPECT_EQ(FromJet(std::string("x"), "F"), Value(std::string("x")));
    jet::Guid guid;
    for (std::size_t i = 0; i < guid.bytes.size(); ++i)
        guid.bytes[i] = static_cast<std::uint8_t>(i + 0xA0);
    EXPECT_EQ(FromJet(guid, "F"), Value(std::string("{A0A1A2A3-A4A5-A6A7-A8A9-AAABACADAEAF}")));
    EXPECT_EQ(FailureOf([] { FromJet(jet::Bytes{1}, "Picture"); }), "Type mismatch: Picture");
}

TEST(JetValues, ComeFromPlatformValues) {
    EXPECT_EQ(ToJet(Null{}), jet::Value(jet::Null{}));
    EXPECT_EQ(ToJet(DateTime{2.5}), jet::Value(jet::Date{2.5}));
    EXPECT_EQ(ToJet(false), jet::Value(false));
    EXPECT_EQ(ToJet(1.5), jet::Value(1.5));
    EXPECT_EQ(ToJet(std::int64_t{-1}), jet::Value(std::int64_t{-1}));
    EXPECT_EQ(ToJet(std::string("x")), jet::Value(std::string("x")));
}

class JetDatabaseTest : public testing::Test {
  protected:
    JetDatabaseTest() : resolver_(Drives(folder_)), provider_(resolver_) {
        using jet::ColumnType;
        jet::TableDefinition songs{.name = "Songs", .columns = {}, .indexes = {}};
        songs.columns = {{.name = "ID", .type = ColumnType::Long, .autoNumber = true},
                         {.name = "Title", .type = ColumnType::Text, .size = 20},
                         {.name = "Number", .type = ColumnType::Integer},
                         {.name = "Added", .type = ColumnType::Date},
                         {.name = "Owned", .type = ColumnType::Boolean}};
        jet::Database::Create(folder_ / "Cdj.mdb", std::span(&songs, 1));
    }

    static DriveTable Drives(const outside::TemporaryFolder& folder) {
        DriveTable drives(folder.Path());
        drives.Map("D", folder.Path());
        return drives;
    }
    std::unique_ptr<Connection> Open(const std::string& path = "D:\\cdj.mdb") {
        return provider_.Open(Prefix + path);
    }

    outside::TemporaryFolder folder_;
    PathResolver resolver_;
    JetDatabaseProvider provider_;
};

TEST_F(JetDatabaseTest, ChangesAndReadsRows) {
    const std::unique_ptr<Connection> connection = Open();
    EXPECT_EQ(connection->Execute("INSERT INTO Songs (Title, [Number]) VALUES (\"One\", 1)"), 1);
    const std::unique_ptr<RecordSet> table = connection->OpenTable("Songs");
    table->AddNew();
    table->Set("Title", std::string("Two"));
    table->Set("Number", std::int64_t{2});
    table->Set("Added", MakeDateTime(2026, 11, 15, 12));
    table->Set("Owned", true);
    table->Update();
    connection->Flush();
    const std::unique_ptr<RecordSet> rows =
        connection->Query("SELECT Title, [Number], Added, Owned FROM Songs ORDER BY [Number]");
    EXPECT_EQ(rows->FieldCount(), 4U);
    EXPECT_EQ(rows->Text("Title"), "One");
    EXPECT_TRUE(IsNull(rows->Get("Added")));
    rows->MoveNext();
    EXPECT_EQ(rows->Get(0), Value(std::string("Two")));
    EXPECT_EQ(rows->Integer("Number"), 2);
    EXPECT_EQ(rows->Get("Added"), Value(MakeDateTime(2026, 11, 15, 12)));
    EXPECT_EQ(rows->Get("Owned"), Value(true));
    rows->MoveNext();
    EXPECT_TRUE(rows->IsEof());
}

TEST_F(JetDatabaseTest, AddsManyRowsOfTheSameFields) {
    const std::unique_ptr<Connection> connection = Open();
    constexpr std::array<std::string_view, 3> Fields{"Number", "Title", "Added"};
    const std::unique_ptr<RowInserter> songs = connection->OpenInserter("Songs", Fields);
    const std::string longTitle = "a title of nineteen";
    songs->Insert(std::array<Value, 3>{std::int64_t{1}, longTitle, MakeDateTime(2026, 11, 15, 12)});
    songs->Insert(std::array<Value, 3>{Null{}, std::string("Two"), Null{}});
    songs->Insert(std::array<Value, 3>{std::int64_t{3}, Null{}, Null{}});
    const std::unique_ptr<RecordSet> rows = connection->Query("SELECT * FROM Songs");
    EXPECT_EQ(rows->Text("Title"), longTitle);
    EXPECT_EQ(rows->Get("Added"), Value(MakeDateTime(2026, 11, 15, 12)));
    rows->MoveNext();
    EXPECT_EQ(rows->Text("Title"), "Two");
    EXPECT_TRUE(IsNull(rows->Get("Number")));
    EXPECT_TRUE(IsNull(rows->Get("Added")));
    rows->MoveNext();
    EXPECT_TRUE(IsNull(rows->Get("Title")));
    EXPECT_EQ(rows->Integer("Number"), 3);
}

TEST_F(JetDatabaseTest, AddsRowsOfOtherFieldsInBetween) {
    const std::unique_ptr<Connection> connection = Open();
    const FieldValue title{"Title", std::string("One")}, number{"Number", std::int64_t{2}};
    connection->Insert("Songs", std::array{title});
    connection->Insert("Songs", std::array{number});
    connection->Insert("Songs", std::array{number, title});
    connection->Insert("Songs", std::array{title});
    const std::unique_ptr<RecordSet> rows = connection->Query("SELECT * FROM Songs");
    std::vector<std::pair<bool, bool>> filled;
    for (; !rows->IsEof(); rows->MoveNext())
        filled.emplace_back(!IsNull(rows->Get("Title")), !IsNull(rows->Get("Number")));
    const std::vector<std::pair<bool, bool>> expected{
        {true, false}, {false, true}, {true, true}, {true, false}};
    EXPECT_EQ(filled, expected);
}

TEST_F(JetDatabaseTest, RecordSetsFilterSortAndDelete) {
    const std::unique_ptr<Connection> connection = Open();
    for (const char* const title : {"b", "a", "c"})
        connection->Execute(std::string("INSERT INTO Songs (Title) VALUES (\"") + title + "\")");
    const std::unique_ptr<RecordSet> table = connection->OpenTable("Songs");
    table->Sort("Title");
    EXPECT_EQ(table->Text("Title"), "a");
    table->MoveNext();
    table->MoveFirst();
    EXPECT_EQ(table->Text("Title"), "a");
    table->Filter("Title='c'");
    EXPECT_EQ(table->Text("Title"), "c");
    table->Delete();
    table->Filter("Title='c'");
    EXPECT_TRUE(table->IsEmpty());
    const std::unique_ptr<RecordSet> rows =
        connection->OpenUpdatable("SELECT * FROM Songs WHERE Title = \"b\"");
    rows->Set("Title", std::string("forgotten"));
    rows->CancelUpdate();
    rows->Set("Title", std::string("B2"));
    rows->Update();
    EXPECT_FALSE(connection->Query("SELECT * FROM Songs WHERE Title=\"B2\"")->IsEmpty());
    EXPECT_TRUE(connection->Query("SELECT * FROM Songs WHERE Title=\"forgotten\"")->IsEmpty());
}

TEST_F(JetDatabaseTest, ConnectionsToOneFileShareIt) {
    const std::unique_ptr<Connection> first = Open();
    const std::unique_ptr<Connection> second = Open("D:\\CDJ.MDB");
    first->Execute("INSERT INTO Songs (Title) VALUES (\"One\")");
    EXPECT_EQ(second->Query("SELECT Title FROM Songs")->Text("Title"), "One");
}

POSIX_TEST_F(JetDatabaseTest, ConnectionsByOtherNamesOfTheFileShareItToo) {
    std::filesystem::create_hard_link(folder_ / "Cdj.mdb", folder_ / "hard.mdb");
    std::filesystem::create_symlink(folder_ / "hard.mdb", folder_ / "soft.mdb");
    const std::unique_ptr<Connection> first = Open();
    const std::unique_ptr<Connection> second = Open("D:\\hard.mdb");
    const std::unique_ptr<Connection> third = Open("D:\\soft.mdb");
    first->Execute("INSERT INTO Songs (Title) VALUES (\"One\")");
    EXPECT_EQ(second->Query("SELECT Title FROM Songs")->Text("Title"), "One");
    EXPECT_EQ(third->Query("SELECT Title FROM Songs")->Text("Title"), "One");
}

POSIX_TEST_F(JetDatabaseTest, APathThatCannotBeLookedUpOpensNothing) {
    std::filesystem::create_symlink(folder_ / "turning.mdb", folder_ / "turning.mdb");
    const std::string what = FailureOf([&] { Open("D:\\turning.mdb"); });
    EXPECT_NE(what.find("turning.mdb"), std::string::npos) << what;
    EXPECT_NE(what.find("symbolic links"), std::string::npos) << what;
}

/// Makes a database with tables that have `rows` rows each, the first one's count spoilt.
void MakeDamagedDatabase(const std::filesystem::path& path) {
    const std::vector<jet::ColumnDefinition> columns{
        {.name = "Number", .type = jet::ColumnType::Integer}};
    jet::Database::Create(
        path, std::vector<jet::TableDefinition>{{"Bad", columns, {}}, {"Good", columns, {}}});
    {
        jet::Database database = jet::Database::Open(path, jet::OpenMode::ReadWrite);
        for (int i = 0; i < 77; ++i)
            database.Execute("INSERT INTO Bad ([Number]) VALUES (1)");
    }
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    for (std::streamoff page = 0; file.seekg(page * 4096 + 16); ++page) {
        if (file.get() != 77) continue;
        file.seekp(page * 4096 + 16);
        file.put(0);
        return;
    }
}

TEST_F(JetDatabaseTest, ADatabaseIsRefusedAsItIsWhenATableThatIsNeededIsDamaged) {
    MakeDamagedDatabase(folder_ / "bad.mdb");
    const std::string before = folder_.Content("bad.mdb");
    JetDatabaseProvider provider(resolver_, {.tables = {"Good", "bad"}, .note = {}});
    const std::string what = FailureOf([&] { provider.Open(std::string(Prefix) + "D:\\bad.mdb"); });
    EXPECT_NE(what.find("bad.mdb is damaged: table Bad: the definition counts 0 rows"),
              std::string::npos)
        << what;
    EXPECT_TRUE(folder_.Content("bad.mdb") == before);
    EXPECT_FALSE(std::filesystem::exists(folder_ / "bad.ldb"));
}

TEST_F(JetDatabaseTest, ADamagedTableThatIsNotNeededIsNamedAndLeftAlone) {
    MakeDamagedDatabase(folder_ / "bad.mdb");
    std::vector<std::string> notes;
    JetDatabaseProvider provider(
        resolver_,
        {.tables = {"Good"}, .note = [&notes](const std::string& note) { notes.push_back(note); }});
    const auto connection = provider.Open(std::string(Prefix) + "D:\\bad.mdb");
    connection->Execute("INSERT INTO Good ([Number]) VALUES (1)");
    EXPECT_NE(FailureOf([&] { connection->Execute("DELETE * FROM Bad"); }).find("is damaged"),
              std::string::npos);
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0].find("Table Bad of the database is damaged"), 0U) << notes[0];
}

TEST_F(JetDatabaseTest, RowsOutliveTheirConnection) {
    std::unique_ptr<Connection> connection = Open();
    connection->Execute("INSERT INTO Songs (Title) VALUES (\"One\")");
    const std::unique_ptr<RecordSet> rows = connection->Query("SELECT Title FROM Songs");
    connection.reset();
    EXPECT_EQ(rows->Text("Title"), "One");
}

TEST_F(JetDatabaseTest, WhatIsWrittenIsThereAtTheNextOpening) {
    Open()->Execute("INSERT INTO Songs (Title) VALUES (\"One\")");
    EXPECT_EQ(Open()->Query("SELECT Title FROM Songs")->Text("Title"), "One");
}

TEST_F(JetDatabaseTest, SaysInWordsWhatTheEngineRefuses) {
    const std::unique_ptr<Connection> connection = Open();
    const auto numberOf = [](auto action) {
        try {
            action();
        } catch (const Failure& failure) {
            EXPECT_STRNE(failure.what(), "");
            return failure.Number();
        }
        return FailureNumber{};
    };
    EXPECT_EQ(numberOf([&] { connection->Execute("DELETE FROM Nowhere"); }),
              FailureNumber::Database);
    EXPECT_EQ(numberOf([&] { connection->Query("SELEKT 1"); }), FailureNumber::Database);
    const std::unique_ptr<RecordSet> table = connection->OpenTable("Songs");
    EXPECT_EQ(numberOf([&] { table->Get("Missing"); }), FailureNumber::Database);
    EXPECT_EQ(numberOf([&] { table->Get("Title"); }), FailureNumber::Database);
    const auto store = [&](const char* field, const Value& value) {
        return numberOf([&] {
            table->AddNew();
            table->Set(field, value);
            table->Update();
        });
    };
    EXPECT_EQ(store("Number", std::int64_t{70000}), FailureNumber::Overflow);
    table->CancelUpdate();
    EXPECT_EQ(store("Number", std::string("abc")), FailureNumber::TypeMismatch);
    table->CancelUpdate();
    EXPECT_EQ(store("Title", std::string(21, 'x')), FailureNumber::Database);
}

TEST_F(JetDatabaseTest, SaysWhatCannotBeOpened) {
    EXPECT_EQ(FailureOf([&] { provider_.Open("Provider=Other;Data Source=D:\\cdj.mdb"); }),
              "Provider cannot be found: \"Other\"");
    EXPECT_EQ(FailureOf([&] { Open(""); }), "No database file is named");
    EXPECT_EQ(FailureOf([&] { Open("E:\\cdj.mdb"); }), "Path not found: E:\\cdj.mdb");
    EXPECT_EQ(FailureOf([&] { Open("D:\\..\\cdj.mdb"); }),
              "Bad file name or number: D:\\..\\cdj.mdb");
    EXPECT_NE(FailureOf([&] { Open("D:\\none.mdb"); }).find("none.mdb"), std::string::npos);
    folder_.MakeFile("text.mdb", "this is no database");
    EXPECT_NE(FailureOf([&] { Open("D:\\text.mdb"); }).find("text.mdb"), std::string::npos);
}

}  // namespace
}  // namespace quillon
