#include "app/journal/row_recorder.h"

#include <gtest/gtest.h>
#include <stdexcept>

#include "jet/database.h"
#include "platform/failure.h"
#include "platform/portable/jet_database.h"
#include "platform/portable/path_resolver.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/record_list.h"

namespace quillon {
namespace {

class RowRecorderTest : public testing::Test {
  protected:
    RowRecorderTest() : resolver_(Drives(folder_)), provider_(resolver_) {
        jet::Database::Create(folder_.Path() / "x.mdb", {});
        connection_ = Open();
        connection_->Execute(
            "CREATE TABLE Shelf (ID COUNTER PRIMARY KEY, Name TEXT(20), "
            "Picture OLEOBJECT)");
        connection_->Execute("CREATE TABLE Named (Code TEXT(9) PRIMARY KEY, Number LONG)");
        connection_->Execute("CREATE TABLE Loose (Name TEXT(20), Number LONG)");
        connection_.reset();
        provider_.SetObserver(&recorder_);
        connection_ = Open();
    }

    static DriveTable Drives(const outside::TemporaryFolder& folder) {
        DriveTable drives(folder.Path());
        drives.Map("D", folder.Path());
        return drives;
    }
    std::unique_ptr<Connection> Open() {
        return provider_.Open(R"(Provider=Microsoft.Jet.OLEDB.4.0; Data Source=D:\x.mdb)");
    }

    outside::TemporaryFolder folder_;
    PathResolver resolver_;
    RecordList list_;
    RowRecorder recorder_{list_};
    JetDatabaseProvider provider_;
    std::unique_ptr<Connection> connection_;
};

TEST_F(RowRecorderTest, TellsOfAnAddedRowWhatItHoldsAndItsKey) {
    connection_->Execute("INSERT INTO Shelf (Name) VALUES ('a')");
    ASSERT_EQ(list_.records.size(), 1U);
    EXPECT_EQ(std::get<RowChange>(list_.records[0]),
              (RowChange{RowChange::Kind::Added,
                         "Shelf",
                         {{"ID", std::int64_t{1}}},
                         {{"ID", Null{}, std::int64_t{1}}, {"Name", Null{}, std::string("a")}}}));
}

TEST_F(RowRecorderTest, NamesAChangedRowByItsKeyBeforeTheChange) {
    connection_->Execute("INSERT INTO Named (Code, Number) VALUES ('a', 1)");
    list_.records.clear();
    connection_->Execute("UPDATE Named SET Code='b'");
    ASSERT_EQ(list_.records.size(), 1U);
    EXPECT_EQ(std::get<RowChange>(list_.records[0]),
              (RowChange{RowChange::Kind::Changed,
                         "Named",
                         {{"Code", std::string("a")}},
                         {{"Code", std::string("a"), std::string("b")}}}));
}

TEST_F(RowRecorderTest, NamesARowWithoutAPrimaryKeyByAllFields) {
    connection_->Execute("INSERT INTO Loose (Name, Number) VALUES ('a', 1)");
    list_.records.clear();
    connection_->Execute("DELETE * FROM Loose");
    ASSERT_EQ(list_.records.size(), 1U);
    EXPECT_EQ(
        std::get<RowChange>(list_.records[0]),
        (RowChange{RowChange::Kind::Removed,
                   "Loose",
                   {{"Name", std::string("a")}, {"Number", std::int64_t{1}}},
                   {{"Name", std::string("a"), Null{}}, {"Number", std::int64_t{1}, Null{}}}}));
}

TEST_F(RowRecorderTest, TellsOnceOfADateThatManyRowsGet) {
    connection_->Execute("CREATE TABLE Seen (At DATETIME)");
    for (int i = 0; i < 3; ++i)
        connection_->Execute("INSERT INTO Seen (At) VALUES (#1/2/2026#)");
    list_.records.clear();
    EXPECT_EQ(connection_->ReplaceDate("Seen", "At", {46024}, {46025.5}), 3U);
    ASSERT_EQ(list_.records.size(), 1U);
    EXPECT_EQ(std::get<DateReplaced>(list_.records[0]),
              (DateReplaced{"Seen", "At", {46024}, {46025.5}, 3}));
}

TEST_F(RowRecorderTest, TellsOfEachRowNoMoreThanItsOwn) {
    connection_->Execute("INSERT INTO Loose (Name, Number) VALUES ('a', 1)");
    connection_->Execute("INSERT INTO Shelf (Name) VALUES ('b')");
    connection_->Execute("UPDATE Shelf SET Name='c'");
    connection_->Execute("INSERT INTO Shelf (Name) VALUES (NULL)");
    ASSERT_EQ(list_.records.size(), 4U);
    EXPECT_EQ(std::get<RowChange>(list_.records[3]),
              (RowChange{RowChange::Kind::Added,
                         "Shelf",
                         {{"ID", std::int64_t{2}}},
                         {{"ID", Null{}, std::int64_t{2}}}}));
}

TEST_F(RowRecorderTest, SavesNoRowsBeforeWhatTheyRelyOnIsDurable) {
    bool fails = true;
    RowRecorder recorder(list_, [&fails] {
        if (fails) throw Failure(FailureNumber::DiskFull, "x");
    });
    // A database that is open keeps the observer that it was opened with.
    connection_.reset();
    list_.records.clear();
    const std::size_t durable = list_.durable;
    provider_.SetObserver(&recorder);
    connection_ = Open();
    connection_->Execute("INSERT INTO Shelf (Name) VALUES ('a')");
    EXPECT_THROW(connection_->Flush(), Failure);
    EXPECT_EQ(list_.durable, durable);
    ASSERT_FALSE(list_.records.empty());
    EXPECT_TRUE(std::holds_alternative<RowChange>(list_.records.back()));
    fails = false;
    connection_->Flush();
    EXPECT_TRUE(std::holds_alternative<RowsSaved>(list_.records.back()));
    connection_.reset();
}

TEST_F(RowRecorderTest, HasRecordsMadeDurableBeforeTheyAreSaved) {
    connection_->Execute("INSERT INTO Shelf (Name) VALUES ('a')");
    connection_->Flush();
    ASSERT_EQ(list_.records.size(), 2U);
    EXPECT_EQ(list_.durable, 1U) << "the row's, before that of the save";
    EXPECT_TRUE(std::holds_alternative<RowsSaved>(list_.records[1]));
}

TEST_F(RowRecorderTest, LeavesTheDatabaseAsItIsWhereNothingCanBeRecorded) {
    list_.full = true;
    EXPECT_THROW(connection_->Execute("INSERT INTO Shelf (Name) VALUES ('a')"), Failure);
    EXPECT_EQ(connection_->Query("SELECT * FROM Shelf")->IsEmpty(), true);
}

}  // namespace
}  // namespace quillon
