// Tables are copied as far as statements look at them.
#include <gtest/gtest.h>

#include "jet/engine/execute.h"
#include "jet/engine/functions.h"
#include "jet/engine/mirror_table.h"
#include "jet/engine/session.h"
#include "jet/storage/database_file.h"
#include "tests/jet/engine/number_table.h"

namespace jet::testing {

namespace {

using engine::MirrorTable;

TEST(PartialCopy, IsCompletedByAStatementThatLooksAtMore) {
    const NumberTable table(300);
    Database whole = table.Open(OpenMode::ReadOnly);
    const std::string all = Rows(whole, "SELECT * FROM T");
    Database database = table.Open(OpenMode::ReadOnly);
    for (const char* const query :
         {"SELECT Count(*) FROM T", "SELECT Name FROM T", "SELECT Plain FROM T WHERE Small = 5",
          "SELECT a.Name FROM T AS a INNER JOIN T AS b ON a.ID = b.Plain WHERE b.Middle < 0",
          "SELECT ID FROM T WHERE Name Like '%ve' ORDER BY Real"})
        EXPECT_EQ(Rows(database, query), Rows(whole, query)) << query;
    EXPECT_EQ(Rows(database, "SELECT * FROM T"), all);
}

TEST(PartialCopy, FollowsChangesOfColumnsThatItLacks) {
    const NumberTable table(300);
    std::string expected;
    {
        Database database = table.Open();
        Rows(database, "SELECT Plain FROM T");
        database.Execute("UPDATE T SET Name = 'n' & ID WHERE Plain = 3");
        database.Execute("INSERT INTO T (Name, Real, Plain) VALUES ('late', 1.5, 3)");
        database.Execute("DELETE * FROM T WHERE Plain = 4");
        EXPECT_EQ(Rows(database, "SELECT Name, Real FROM T WHERE ID > 300"), "late|1.5");
        expected = Rows(database, "SELECT * FROM T");
    }
    EXPECT_EQ(StructuralFaults(table.Path()), "");
    Database database = table.Open();
    EXPECT_EQ(Rows(database, "SELECT * FROM T"), expected);
}

TEST(PartialCopy, IsNotMadeToDeleteAllRows) {
    const NumberTable table(300);
    {
        engine::Session session(table.Path(), OpenMode::ReadWrite, {});
        EXPECT_EQ(engine::Execute(session, "DELETE * FROM T"), 300);
        EXPECT_FALSE(session.Table("T").Has({}));
        EXPECT_EQ(engine::Execute(session, "DELETE * FROM T"), 0);
        session.Close();
    }
    EXPECT_EQ(StructuralFaults(table.Path()), "");
    Database database = table.Open();
    EXPECT_EQ(Rows(database, "SELECT Count(*) FROM T"), "0");
}

TEST(PartialCopy, LosesAllItsRowsToADeleteOfAll) {
    const NumberTable table(300);
    Database database = table.Open();
    Rows(database, "SELECT Plain FROM T");
    EXPECT_EQ(database.Execute("DELETE * FROM T"), 300);
    EXPECT_EQ(Rows(database, "SELECT Count(*) FROM T"), "0");
}

TEST(PartialCopy, ServesRecordSetsThatChangeRows) {
    const NumberTable table(300);
    Database database = table.Open();
    Rows(database, "SELECT Plain FROM T WHERE Plain = 99");
    const auto rows = database.OpenUpdatable("SELECT ID, Name FROM T WHERE Plain = 3");
    const std::int64_t id = std::get<std::int64_t>(rows->Get("ID"));
    rows->Set("Name", Value("changed"));
    rows->Update();
    const auto cursor = database.OpenTable("T");
    cursor->Filter("Name = 'changed'");
    EXPECT_EQ(Show(cursor->Get("ID")), std::to_string(id));
    EXPECT_EQ(Show(cursor->Get("Plain")), "3");
    cursor->AddNew();
    cursor->Set("Real", Value(2.5));
    cursor->Update();
    EXPECT_EQ(Show(cursor->Get("ID")), "301");
    EXPECT_EQ(Show(cursor->Get("Real")), "2.5");
    EXPECT_EQ(Show(rows->Get("Name")), "changed");
}

TEST(PartialCopy, IsNotMadeForATableThatRowsAreAddedTo) {
    const NumberTable table(300);
    const auto session =
        std::make_shared<engine::Session>(table.Path(), OpenMode::ReadWrite, NeededTables());
    engine::Execute(*session, "INSERT INTO T (Name) VALUES ('a')");
    EXPECT_EQ(session->Table("T").RowCount(), 0);
    engine::Execute(*session, "INSERT INTO T (Name) SELECT Name FROM T WHERE Plain = 3");
    EXPECT_GT(session->Table("T").RowCount(), 300);
}

/// The copy of the table, without statements.
class Copy : public ::testing::Test {
  protected:
    static engine::Sqlite WithFunctions() {
        engine::Sqlite sqlite;
        engine::RegisterFunctions(sqlite);
        return sqlite;
    }
    std::string Held(const std::string& columns) {
        engine::Statement rows(sqlite_.Handle(), "SELECT " + columns + " FROM T");
        rows.Step();
        return std::string(rows.Text(0));
    }
    static const std::vector<std::size_t>& Columns(std::initializer_list<std::size_t> columns) {
        static std::vector<std::size_t> held;
        return held = columns;
    }

    NumberTable table_{300};
    storage::DatabaseFile file_ = storage::DatabaseFile::Open(table_.Path(), OpenMode::ReadWrite);
    engine::Sqlite sqlite_ = WithFunctions();
    engine::StatementCache statements_{sqlite_};
    MirrorTable copy_{sqlite_, statements_, file_.OpenTable("T")};
};

TEST_F(Copy, HoldsTheColumnsThatWereAskedForAndNoOthers) {
    EXPECT_FALSE(copy_.Has({}));
    copy_.Load(Columns({0, 4}));
    EXPECT_TRUE(copy_.Has(Columns({4})));
    EXPECT_FALSE(copy_.Has(Columns({4, 6})));
    EXPECT_EQ(Held("count(ID) || ' ' || count(Plain) || ' ' || count(Name)"), "300 300 0");
    copy_.Load(Columns({6, 4}));
    EXPECT_TRUE(copy_.Has(Columns({0, 4, 6})));
    EXPECT_NE(Held("count(Name)"), "0");
    EXPECT_EQ(Held("count(Large)"), "0");
}

TEST_F(Copy, TakesAllColumnsRatherThanHaveTheTableReadTimeAndAgain) {
    copy_.Load(Columns({0}));
    copy_.Load(Columns({1}));
    EXPECT_FALSE(copy_.Has(Columns({2})));
    copy_.Load(Columns({2}));
    EXPECT_TRUE(copy_.Has(Columns({0, 1, 2, 3, 4, 5, 6})));
    EXPECT_EQ(Held("count(Plain)"), "300");
}

TEST_F(Copy, HoldsSingleRowsWholeUntilAllAreThere) {
    EXPECT_TRUE(copy_.LoadRowsWith(0, 7));
    EXPECT_EQ(copy_.RowCount(), 1);
    EXPECT_FALSE(copy_.Has({}));
    EXPECT_EQ(Held("count(*) || ' ' || max(ID) || ' ' || count(Plain)"), "1 7 1");
    EXPECT_FALSE(copy_.LoadRowsWith(4, 3)) << "there is no index on Plain";
    copy_.Load(Columns({0}));
    EXPECT_EQ(copy_.RowCount(), 300);
    EXPECT_EQ(Held("count(*)"), "300");
    EXPECT_FALSE(copy_.LoadRowsWith(0, 8));
}

TEST_F(Copy, IsAsBeforeWhenLoadingIsInterrupted) {
    copy_.LoadRowsWith(0, 7);
    int questions = 0;
    sqlite_.SetInterruption([&] { return ++questions == 2; });
    EXPECT_THROW(copy_.Load(Columns({0, 4})), Error);
    EXPECT_EQ(Held("count(*) || ' ' || max(ID) || ' ' || count(Plain)"), "1 7 1");
    EXPECT_EQ(copy_.RowCount(), 1);
    copy_.Load(Columns({0}));
    questions = 0;
    EXPECT_THROW(copy_.Load(Columns({4})), Error);
    EXPECT_FALSE(copy_.Has(Columns({4})));
    copy_.Update(copy_.Insert(storage::Row(7)),
                 std::vector<storage::FieldChange>{{4, Value(std::int64_t{11})}});
    copy_.Load(Columns({4}));
    EXPECT_EQ(Held("count(Plain) || ' ' || max(Plain)"), "301 11");
}

}  // namespace

}  // namespace jet::testing
