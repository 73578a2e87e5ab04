#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/jet/engine/sample_database.h"

namespace jet::testing {
namespace {

/// Writes down what it is told; refuses where a test says so.
class Listener : public RowObserver {
  public:
    void RowAdded(const TableDefinition& table, std::span<const Value> row) override {
        Tell("+ " + table.name + ' ' + Fields(table, row));
    }
    void RowChanged(const TableDefinition& table, std::span<const Value> before,
                    std::span<const Value> after) override {
        std::string text = "~ " + table.name;
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (before[i] == after[i]) continue;
            text += ' ' + table.columns[i].name + ' ' + Show(before[i]) + " -> " + Show(after[i]);
        }
        Tell(text);
    }
    void RowRemoved(const TableDefinition& table, std::span<const Value> row) override {
        Tell("- " + table.name + ' ' + Fields(table, row));
    }
    void DateReplaced(const TableDefinition& table, const ReplacedDate& date) override {
        Tell("@ " + table.name + ' ' + table.columns[date.column].name + ' ' +
             std::to_string(date.rows) + " rows " + Show(date.before) + " -> " + Show(date.after));
    }
    void BeforeCommit() override { Tell("before commit"); }
    void AfterCommit() override { Tell("after commit"); }

    using Told = std::vector<std::string>;
    Told told;
    std::string refused;  ///< begins what is not to happen

  private:
    static std::string Fields(const TableDefinition& table, std::span<const Value> row) {
        std::string text;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (IsNull(row[i])) continue;
            text += (text.empty() ? "" : " ") + table.columns[i].name + '=' + Show(row[i]);
        }
        return text;
    }

    void Tell(const std::string& text) {
        if (!refused.empty() && text.starts_with(refused)) throw std::runtime_error("refused");
        told.push_back(text);
    }
};

class RowObserverTest : public ::testing::Test {
  protected:
    RowObserverTest() {
        database_.Execute(
            "CREATE TABLE Shelf (ID COUNTER PRIMARY KEY, Name TEXT(20) NOT NULL, "
            "Books LONG, Full YESNO)");
        database_.Execute("INSERT INTO Shelf (Name, Books) VALUES ('a', 1)");
        database_.Execute("INSERT INTO Shelf (Name, Books) VALUES ('b', 2)");
        database_->Flush();
        database_->SetObserver(&listener_);
    }
    ~RowObserverTest() override { database_.Close(); }

    using Told = Listener::Told;
    Listener listener_;
    SampleDatabase database_;
};

TEST_F(RowObserverTest, IsToldOfRowsThatStatementsAddChangeAndRemove) {
    database_.Execute("INSERT INTO Shelf (Name) VALUES ('c')");
    database_.Execute("UPDATE Shelf SET Books=Books+1, Full=True WHERE Name='b'");
    database_.Execute("DELETE * FROM Shelf WHERE ID=1");
    EXPECT_EQ(listener_.told,
              (Told{"+ Shelf ID=3 Name=c Full=False", "~ Shelf Books 2 -> 3 Full False -> True",
                    "- Shelf ID=1 Name=a Books=1 Full=False"}));
}

TEST_F(RowObserverTest, IsToldOfRowsThatRecordSetsChange) {
    const auto rows = database_->OpenTable("Shelf");
    rows->Set("Name", Value{std::string("A")});
    rows->Update();
    rows->AddNew();
    rows->Set("Name", Value{std::string("z")});
    rows->Update();
    rows->Filter("Name='b'");
    rows->Delete();
    EXPECT_EQ(listener_.told, (Told{"~ Shelf Name a -> A", "+ Shelf ID=3 Name=z Full=False",
                                    "- Shelf ID=2 Name=b Books=2 Full=False"}));
}

TEST_F(RowObserverTest, IsToldOfRowsThatAreAddedChangedAndRemovedByKey) {
    const std::vector<std::string_view> fields{"Name"};
    const auto inserter = database_->OpenInserter("Shelf", fields);
    std::vector<Value> values{Value{std::string("c")}};
    const auto added = inserter->Insert(values);
    database_->Update("Shelf", added.key,
                      std::vector<Database::Field>{{"Books", Value{std::int64_t{7}}}});
    database_->Delete("Shelf", added.key);
    EXPECT_EQ(listener_.told, (Told{"+ Shelf ID=3 Name=c Full=False", "~ Shelf Books Null -> 7",
                                    "- Shelf ID=3 Name=c Books=7 Full=False"}));
}

TEST_F(RowObserverTest, HearsNothingOfWhatMakesNoDifference) {
    database_.Execute("UPDATE Shelf SET Books=1 WHERE Name='a'");
    EXPECT_ANY_THROW(database_.Execute("INSERT INTO Shelf (ID, Name) VALUES (1, 'twice')"));
    database_->Flush();
    EXPECT_EQ(listener_.told, Told{});
}

TEST_F(RowObserverTest, IsToldOfTheOppositeOfWhatAFailedStatementHadDone) {
    database_.Execute("CREATE UNIQUE INDEX ByBooks ON Shelf (Books)");
    listener_.told.clear();
    EXPECT_ANY_THROW(database_.Execute("UPDATE Shelf SET Books=5"));
    EXPECT_EQ(listener_.told, (Told{"~ Shelf Books 1 -> 5", "~ Shelf Books 5 -> 1"}));
}

TEST_F(RowObserverTest, IsToldBeforeAndAfterChangesReachTheFile) {
    database_.Execute("DELETE * FROM Shelf WHERE ID=1");
    database_->Flush();
    database_->Flush();
    EXPECT_EQ(listener_.told,
              (Told{"- Shelf ID=1 Name=a Books=1 Full=False", "before commit", "after commit"}));
}

TEST_F(RowObserverTest, IsNotToldOfACommitForATransactionThatIsTakenBack) {
    {
        const Transaction transaction(database_.Get());
        database_.Execute("DELETE * FROM Shelf WHERE ID=1");
    }
    database_->Flush();
    database_.Execute("UPDATE Shelf SET Books=9 WHERE ID=1");
    EXPECT_EQ(listener_.told,
              (Told{"- Shelf ID=1 Name=a Books=1 Full=False", "~ Shelf Books 1 -> 9"}))
        << "and goes on being told";
}

TEST_F(RowObserverTest, IsNotToldOfACommitForWhatIsDiscarded) {
    database_.Execute("DELETE * FROM Shelf WHERE ID=1");
    database_->Discard();
    EXPECT_EQ(listener_.told, Told{"- Shelf ID=1 Name=a Books=1 Full=False"});
}

TEST_F(RowObserverTest, KeepsFromHappeningWhatItRefuses) {
    for (const auto& [refused, statement] : std::vector<std::pair<std::string, std::string>>{
             {"+", "INSERT INTO Shelf (Name) VALUES ('c')"},
             {"~", "UPDATE Shelf SET Books=3 WHERE ID=1"},
             {"-", "DELETE * FROM Shelf WHERE ID=1"}}) {
        listener_.refused = refused;
        EXPECT_THROW(database_.Execute(statement), std::runtime_error) << statement;
    }
    EXPECT_EQ(database_.Rows("SELECT * FROM Shelf"), "1|a|1|False\n2|b|2|False");
    listener_.refused.clear();
    database_.Execute("INSERT INTO Shelf (Name) VALUES ('c')");
    EXPECT_EQ(database_.Rows("SELECT ID FROM Shelf WHERE Name='c'"), "3");
    database_.Close();
    EXPECT_EQ(StructuralFaults(database_.Path()), "");
}

TEST_F(RowObserverTest, KeepsChangesFromReachingTheFileTheEndOfTheDatabaseIncluded) {
    database_.Execute("UPDATE Shelf SET Books=3 WHERE ID=1");
    listener_.refused = "before";
    EXPECT_THROW(database_->Flush(), std::runtime_error);
    database_.Reopen();
    EXPECT_EQ(database_.Rows("SELECT Books FROM Shelf WHERE ID=1"), "1");
}

TEST_F(RowObserverTest, IsNotToldOfTheCatalogsOwnRows) {
    database_.Execute("CREATE TABLE Other (ID LONG)");
    database_.Execute("DROP TABLE Other");
    EXPECT_EQ(listener_.told,
              (Told{"before commit", "after commit", "before commit", "after commit"}));
}

TEST_F(RowObserverTest, IsToldOfEachRowThatGoesWithAllOthers) {
    EXPECT_EQ(database_->Execute("DELETE * FROM Shelf"), 2);
    EXPECT_THAT(listener_.told, ::testing::ElementsAre(::testing::StartsWith("- Shelf ID=1"),
                                                       ::testing::StartsWith("- Shelf ID=2")));
}

TEST_F(RowObserverTest, IsToldOnceOfADateThatManyRowsGet) {
    database_.Execute("CREATE TABLE Read (At DATETIME)");
    for (int i = 0; i < 2; ++i)
        database_.Execute("INSERT INTO Read (At) VALUES (#1/2/2026#)");
    database_->Flush();
    listener_.told.clear();
    database_->ReplaceDate("Read", "At", Date{46024}, Date{46025});
    database_->ReplaceDate("Read", "At", Date{46024}, Date{46025});
    const std::string before = Show(Date{46024}), after = Show(Date{46025});
    EXPECT_EQ(listener_.told, Told{"@ Read At 2 rows " + before + " -> " + after});
    listener_.refused = "@";
    EXPECT_THROW(database_->ReplaceDate("Read", "At", Date{46025}, Date{46026}),
                 std::runtime_error);
    EXPECT_EQ(database_.Rows("SELECT COUNT(*) FROM Read WHERE At=#1/3/2026#"), "2");
}

/// Every run empties tables that are empty already.
TEST_F(RowObserverTest, HasNothingToHearWhereAnEmptyTableIsEmptied) {
    database_.Execute("DELETE * FROM Shelf");
    database_->Flush();
    listener_.told.clear();
    EXPECT_EQ(database_->Execute("DELETE * FROM Shelf"), 0);
    database_->Flush();
    EXPECT_THAT(listener_.told, ::testing::IsEmpty());
}

}  // namespace
}  // namespace jet::testing
