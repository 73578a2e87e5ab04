// Statements that are ended before their time.
#include <array>
#include <gtest/gtest.h>

#include "tests/jet/engine/number_table.h"
#include "tests/outside/temporary_folder.h"

namespace jet::testing {

namespace {

constexpr int RowCount = 1500;

class Interruption : public ::testing::Test {
  protected:
    /// Says yes to the question of this number, from 1, and to no other.
    void InterruptAt(int question) {
        questions_ = 0;
        database_.SetInterruption([this, question] { return ++questions_ == question; });
    }
    template <typename Work>
    void ExpectInterrupted(Work work) {
        try {
            work();
            ADD_FAILURE() << "it came to its end";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::Interrupted) << error.what();
        }
    }
    std::string All() { return testing::Rows(database_, "SELECT * FROM T"); }

    NumberTable table_{RowCount};
    Database database_ = table_.Open();
    int questions_ = 0;
};

const char* const EachMeetsEach =
    "SELECT Count(*) FROM T AS a, T AS b, T AS c WHERE a.ID + b.ID + c.ID = -1";

TEST_F(Interruption, EndsAQueryThatWouldTakeForEver) {
    for (const int question : {1, 2, 20, 200}) {
        InterruptAt(question);
        ExpectInterrupted([&] { database_.Query(EachMeetsEach); });
        EXPECT_EQ(questions_, question);
        EXPECT_EQ(testing::Rows(database_, "SELECT Count(*) FROM T"), std::to_string(RowCount));
    }
}

TEST_F(Interruption, EndsTheWalkOverAResult) {
    const auto rows = database_.Query("SELECT a.ID FROM T AS a, T AS b");
    InterruptAt(50);
    ExpectInterrupted([&] {
        for (; !rows->IsEof(); rows->MoveNext()) {
        }
    });
    const auto cursor = database_.OpenUpdatable("SELECT a.ID FROM T AS a, T AS b");
    InterruptAt(50);
    ExpectInterrupted([&] {
        for (; !cursor->IsEof(); cursor->MoveNext()) {
        }
    });
    EXPECT_EQ(testing::Rows(database_, "SELECT ID FROM T WHERE ID = 5"), "5");
}

TEST_F(Interruption, LeavesEveryRowAsItWas) {
    const std::string before = All();
    for (const char* const sql :
         {"UPDATE T SET Name = 'long ' & Name & Name & Name & Name, Middle = 77, Large = ID",
          "DELETE * FROM T WHERE Plain <> 3",
          "INSERT INTO T (Name, Large, Small) SELECT Name, Large, Small FROM T"}) {
        for (const int question : {1, 30, 900}) {
            InterruptAt(question);
            ExpectInterrupted([&] { database_.Execute(sql); });
            // A row that was deleted and put back may stand elsewhere.
            EXPECT_EQ(testing::Rows(database_, "SELECT * FROM T ORDER BY ID"), before) << sql;
        }
    }
    EXPECT_EQ(database_.Execute("UPDATE T SET Name = 'x' WHERE ID = 5"), 1);
    database_.Flush();
    EXPECT_EQ(StructuralFaults(table_.Path()), "");
    EXPECT_EQ(testing::Rows(database_, "SELECT Name FROM T WHERE ID = 5"), "x");
}

TEST_F(Interruption, OfAChangeThatIsDiscardedLeavesTheFileByteForByte) {
    const std::string before = outside::ContentOf(table_.Path());
    InterruptAt(800);
    ExpectInterrupted([&] { database_.Execute("DELETE * FROM T"); });
    database_.Discard();
    EXPECT_EQ(outside::ContentOf(table_.Path()), before);
    Database again = table_.Open();
    EXPECT_EQ(testing::Rows(again, "SELECT Count(*) FROM T"), std::to_string(RowCount));
}

TEST_F(Interruption, IsOverWhenItIsTakenBack) {
    database_.SetInterruption([] { return true; });
    ExpectInterrupted([&] { All(); });
    database_.SetInterruption({});
    EXPECT_NE(All(), "");
}

/// The first rows of a join in which each row of a table meets all of the other, millions of them:
/// that they come after few questions shows that the others were not looked at before.
TEST_F(Interruption, FindsNoJoinThatIsGoneThroughBeforeItsFirstRow) {
    database_.Execute("UPDATE T SET Plain = 1");
    All();
    for (const char* const join :
         {"T AS a, T AS b", "T AS a INNER JOIN T AS b ON a.Plain = b.Plain",
          "T AS a LEFT JOIN T AS b ON a.Plain = b.Plain",
          "(T AS a INNER JOIN T AS b ON a.Plain = b.Plain) INNER JOIN T AS c ON b.Plain = c.Plain",
          "T AS a INNER JOIN T AS b ON a.Plain = b.Plain WHERE b.Small = 5"}) {
        const std::string query = std::string("SELECT a.ID, b.ID FROM ") + join;
        for (int i = 0; i < 3; ++i) {  // indexes of the copy may come later
            InterruptAt(40);
            const auto rows = database_.Query(query);
            for (int row = 0; row < 5; ++row, rows->MoveNext())
                EXPECT_EQ(Show(rows->Get(std::size_t{0})), "1") << query;
            const auto cursor = database_.OpenUpdatable(query);
            EXPECT_EQ(Show(cursor->Get(std::size_t{0})), "1") << query;
        }
    }
}

}  // namespace

}  // namespace jet::testing
