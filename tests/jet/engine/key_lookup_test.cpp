// Rows that a statement names by an indexed number come by the file's index.
#include <fstream>
#include <gtest/gtest.h>

#include "jet/engine/query_result.h"
#include "jet/engine/session.h"
#include "jet/engine/wanted_number.h"
#include "tests/jet/engine/counting_files.h"
#include "tests/jet/engine/number_table.h"
#include "tests/outside/density.h"

namespace jet::testing {

namespace {

constexpr std::size_t BytesOfPage = 4096;

const std::vector<std::string>& Literals() {
    static const std::vector<std::string> literals = {
        "0",          "1",           "5",
        "-5",         "(5)",         "+5",
        "5.0",        "5.5",         "-0.0",
        "255",        "256",         "-1",
        "32767",      "-32768",      "32768",
        "40000",      "2147483647",  "-2147483648",
        "2147483648", "99999999999", "-99999999999999999999",
        "1e3",        "5e0",         "'5'",
        "' 5 '",      "'5.0'",       "'five'",
        "''",         "Null",        "True",
        "False",      "#1/4/1900#",  "2+3",
        "Plain",      "[Large]"};
    return literals;
}

/// Of those in a group, none looks at a row of which the condition is not true, or all may.
std::vector<std::vector<std::string>> StatementsWith(const std::string& condition) {
    return {
        {"SELECT * FROM T WHERE " + condition,
         "SELECT Count(*), Max(Large), First(Name) FROM T WHERE " + condition,
         "SELECT Name, Plain FROM T WHERE Plain < 5 AND " + condition + " ORDER BY Name, Real",
         "SELECT x.Name FROM T AS x WHERE NOT (Plain = 3) AND (" + condition + ")",
         "SELECT TOP 3 ID, Real FROM T WHERE " + condition,
         "SELECT n, (SELECT Count(*) FROM T WHERE " + condition + ") FROM (SELECT 5 AS n) AS b"},
        {"SELECT Small, Count(*) FROM T GROUP BY Small, Large HAVING " + condition},
        {"SELECT Max(Plain) FROM T GROUP BY Middle HAVING " + condition},
        {"SELECT ID, (SELECT Count(*) FROM T) FROM T WHERE " + condition},
        {"SELECT a.ID, b.ID FROM T AS a INNER JOIN T AS b ON a.Plain = b.Small WHERE a." +
         condition},
        {"SELECT a.ID FROM T AS a LEFT JOIN (SELECT 5 AS n) AS b ON a." + condition},
        {"SELECT DISTINCT Plain FROM T WHERE " + condition + " OR Plain = 1"}};
}

TEST(KeyLookup, FindsTheSameRowsAsALookAtAllOfThem) {
    const NumberTable table(400);
    Database all = table.Open(OpenMode::ReadOnly);
    Rows(all, "SELECT * FROM T");
    std::size_t found = 0;
    for (const char* const column : {"ID", "Small", "Middle", "Large", "Plain", "Real", "Name"}) {
        for (std::size_t i = 0; i < Literals().size(); i += outside::StepUnderSanitizers(4)) {
            const std::string& literal = Literals()[i];
            auto groups = StatementsWith(column + (" = " + literal));
            groups.push_back({"SELECT * FROM T WHERE " + literal + " = " + column});
            for (const auto& queries : groups) {
                // Rows that one statement has fetched are there for the next: they must do no harm.
                Database few = table.Open(OpenMode::ReadOnly);
                for (const std::string& query : queries) {
                    const std::string expected = Outcome(all, query);
                    EXPECT_EQ(Outcome(few, query), expected) << query;
                    if (!expected.empty()) ++found;
                }
            }
        }
    }
    EXPECT_GT(found, 500U / outside::StepUnderSanitizers(4));
}

TEST(KeyLookup, MeansTheFieldThatAFilterMeans) {
    const NumberTable table(400);
    Database database = table.Open(OpenMode::ReadOnly);
    const auto rows = database.OpenUpdatable("SELECT Plain AS ID, Name FROM T");
    rows->Filter("ID = 3");
    Database all = table.Open(OpenMode::ReadOnly);
    const std::string expected = Rows(all, "SELECT Plain, Name FROM T WHERE Plain + 0 = 3");
    EXPECT_FALSE(expected.empty());
    EXPECT_EQ(Rows(*rows), expected);
}

/// A session that counts the pages it reads.
class CountedLookup : public ::testing::Test {
  protected:
    std::string Rows(const std::string& query) {
        engine::QueryResult rows(session_, query);
        return testing::Rows(rows);
    }
    std::size_t ReadsFor(const std::string& query) {
        const std::size_t before = files_->Reads();
        Rows(query);
        return files_->Reads() - before;
    }
    std::size_t PagesOfFile() const {
        return static_cast<std::size_t>(std::filesystem::file_size(table_.Path())) / BytesOfPage;
    }

    NumberTable table_{4000};
    std::shared_ptr<CountingFiles> files_ = std::make_shared<CountingFiles>();
    std::shared_ptr<engine::Session> session_ = std::make_shared<engine::Session>(
        table_.Path(), OpenMode::ReadOnly, NeededTables::None(), files_);
};

TEST_F(CountedLookup, ReadsTheLeafOfTheIndexAndThePageOfTheRow) {
    ASSERT_GT(PagesOfFile(), 100U);
    EXPECT_LT(files_->Reads(), 50U) << "opening for reading reads definitions, no rows";
    EXPECT_EQ(ReadsFor("SELECT * FROM T WHERE ID = 2000"), 2U) << "the root is known";
    EXPECT_EQ(ReadsFor("SELECT * FROM T WHERE ID = 2000"), 0U);
    EXPECT_LE(ReadsFor("SELECT Name FROM T WHERE Plain < 9 AND 3000 = ID"), 2U);
    EXPECT_LE(ReadsFor("SELECT Count(*) FROM T WHERE ID = 1000 AND Name Like '%e'"), 2U);
    EXPECT_EQ(ReadsFor("SELECT * FROM T WHERE ID = 2147483648"), 0U) << "no Long is that large";
    EXPECT_EQ(ReadsFor("SELECT * FROM T WHERE ID = 5.5"), 0U);
    EXPECT_GT(ReadsFor("SELECT * FROM T WHERE ID = '5'"), 30U);
}

TEST_F(CountedLookup, GivesWayToTheWholeTableWhereManyRowsAreAskedFor) {
    EXPECT_GT(ReadsFor("SELECT Count(*) FROM T WHERE Small = 5"), 30U);
    const engine::MirrorTable& table = session_->Table("T");
    EXPECT_EQ(table.RowCount(), 4000);
}

TEST_F(CountedLookup, GivesWayToTheWholeTableAfterManyLookups) {
    const engine::MirrorTable& table = session_->Table("T");
    for (int id = 1; id <= 250; ++id)
        EXPECT_NE(Rows("SELECT ID FROM T WHERE ID = " + std::to_string(id)), "");
    EXPECT_EQ(table.RowCount(), 250);
    Rows("SELECT ID FROM T WHERE ID = 251");
    EXPECT_EQ(table.RowCount(), 4000);
}

TEST_F(CountedLookup, IsNotAskedForByAnIndexThatIsDamaged) {
    session_.reset();
    std::fstream file(table_.Path(), std::ios::in | std::ios::out | std::ios::binary);
    std::size_t spoilt = 0;
    for (std::size_t page = 0; page < PagesOfFile(); ++page) {
        char kind = 0;
        file.seekg(static_cast<std::streamoff>(page * BytesOfPage));
        file.read(&kind, 1);
        if (kind != 4) continue;  // a leaf of an index
        file.seekp(static_cast<std::streamoff>(page * BytesOfPage));
        file.put(9);
        ++spoilt;
    }
    file.close();
    ASSERT_GT(spoilt, 5U);
    Database database = table_.Open(OpenMode::ReadOnly);
    EXPECT_EQ(testing::Rows(database, "SELECT ID FROM T WHERE ID = 77"), "77");
}

TEST(KeyLookup, FindsWhatTheSessionHasChanged) {
    const NumberTable table(400);
    {
        Database database = table.Open();
        const auto ids = [&](const std::string& condition) {
            return Rows(database, "SELECT ID, Large, Name FROM T WHERE " + condition);
        };
        EXPECT_EQ(ids("Large = 777"), "");
        EXPECT_EQ(database.Execute("INSERT INTO T (Large, Name) VALUES (777, 'new')"), 1);
        EXPECT_EQ(ids("Large = 777"), "401|777|new");
        EXPECT_EQ(database.Execute("UPDATE T SET Large = 778, Name = 'moved' WHERE ID = 401"), 1);
        EXPECT_EQ(ids("Large = 777"), "");
        EXPECT_EQ(ids("Large = 778"), "401|778|moved");
        EXPECT_EQ(ids("ID = 401"), "401|778|moved");
        EXPECT_EQ(database.Execute("UPDATE T SET Large = 778 WHERE ID = 7"), 1);
        EXPECT_EQ(ids("Large = 778 AND ID < 9").substr(0, 6), "7|778|");
        EXPECT_EQ(database.Execute("DELETE * FROM T WHERE ID = 401"), 1);
        EXPECT_EQ(ids("ID = 401"), "");
        EXPECT_EQ(database.Execute("DELETE * FROM T WHERE ID = 401"), 0);

        const Database::AddedRow added =
            database.Insert("T", std::array{Database::Field{"Large", Value(std::int64_t{778})}});
        EXPECT_EQ(ids("Large = 778 AND ID > 9"), std::to_string(added.number) + "|778|Null");
        database.Update("T", added.key, std::array{Database::Field{"Name", Value("by key")}});
        EXPECT_EQ(ids("Large = 778 AND ID > 9"), std::to_string(added.number) + "|778|by key");
        database.Delete("T", added.key);
        EXPECT_EQ(ids("Large = 778 AND ID > 9"), "");
        EXPECT_EQ(Rows(database, "SELECT Count(*) FROM T"), "400");
        EXPECT_EQ(ids("Large = 778").substr(0, 6), "7|778|");
    }
    EXPECT_EQ(StructuralFaults(table.Path()), "");
}

TEST(KeyLookup, ServesRecordSetsThatChangeRows) {
    const NumberTable table(400);
    {
        Database database = table.Open();
        const auto row = database.OpenUpdatable("SELECT ID, Name FROM T WHERE ID = 9");
        row->Set("Name", Value("changed"));
        row->Update();
        EXPECT_EQ(Show(row->Get("Name")), "changed");
        row->AddNew();
        row->Set("Name", Value("added"));
        row->Update();
        EXPECT_EQ(Show(row->Get("ID")), "401");
        EXPECT_EQ(Show(row->Get("Name")), "added");
        // The table comes whole meanwhile.
        EXPECT_EQ(Rows(database, "SELECT ID FROM T WHERE Name = 'changed' OR Name = 'added'"),
                  "9\n401");
        EXPECT_EQ(Show(row->Get("Name")), "added");
        row->MoveFirst();
        EXPECT_EQ(Show(row->Get("Name")), "changed");
        row->Delete();
        EXPECT_EQ(Rows(database, "SELECT ID FROM T WHERE ID = 9"), "");
    }
    EXPECT_EQ(StructuralFaults(table.Path()), "");
}

TEST(NumberEqualTo, KnowsWholeNumbersOfTheFieldsRange) {
    using engine::NumberEqualTo;
    using Kind = engine::WantedNumber::Kind;
    const auto kind = [](ColumnType type, const dialect::Literal& literal, bool negated = false) {
        return NumberEqualTo(type, literal, negated).kind;
    };
    EXPECT_EQ(NumberEqualTo(ColumnType::Long, std::int64_t{5}, true).number, -5);
    EXPECT_EQ(NumberEqualTo(ColumnType::Integer, 5.0, false).number, 5);
    EXPECT_EQ(kind(ColumnType::Byte, std::int64_t{255}), Kind::One);
    EXPECT_EQ(kind(ColumnType::Byte, std::int64_t{256}), Kind::None);
    EXPECT_EQ(kind(ColumnType::Byte, std::int64_t{1}, true), Kind::None);
    EXPECT_EQ(kind(ColumnType::Integer, std::int64_t{32768}, true), Kind::One);
    EXPECT_EQ(kind(ColumnType::Integer, std::int64_t{32768}), Kind::None);
    EXPECT_EQ(kind(ColumnType::Long, 5.5), Kind::None);
    EXPECT_EQ(kind(ColumnType::Long, 1e300), Kind::None);
    EXPECT_EQ(kind(ColumnType::Long, std::string("5")), Kind::Unknown);
    for (const ColumnType type : {ColumnType::Boolean, ColumnType::Double, ColumnType::Single,
                                  ColumnType::Date, ColumnType::Currency, ColumnType::Text})
        EXPECT_EQ(kind(type, std::int64_t{5}), Kind::Unknown);
}

}  // namespace

}  // namespace jet::testing
