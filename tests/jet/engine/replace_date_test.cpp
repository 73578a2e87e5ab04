#include <gtest/gtest.h>
#include <string>

#include "jet/error.h"
#include "tests/jet/engine/sample_database.h"

namespace jet::testing {
namespace {

constexpr Date First{46000.25}, Second{46001.125}, Third{46002};

class ReplaceDate : public ::testing::Test {
  protected:
    ReplaceDate() {
        database_.Execute("CREATE TABLE Notes (Seen DATETIME, Name TEXT(255), Made DATETIME)");
        database_.Execute("CREATE INDEX ByMade ON Notes (Made)");
    }
    ~ReplaceDate() override { database_.Close(); }

    void AddRow(const std::string& name, const Value& seen) {
        const std::vector<Database::Field> fields{{"Name", Value{name}}, {"Seen", seen}};
        database_->Insert("Notes", fields);
    }
    std::string Names(Date seen) {
        std::string names;
        const std::vector<std::string_view> fields{"Name", "Seen"};
        database_->Scan("Notes", fields, [&](Database::RowKey, std::span<Value> values) {
            if (values[1] == Value{seen}) names += std::get<std::string>(values[0]).substr(0, 1);
        });
        return names;
    }
    ErrorKind Refusal(std::string_view field, Date before, Date after) {
        try {
            database_->ReplaceDate("Notes", field, before, after);
        } catch (const Error& error) {
            return error.Kind();
        }
        return ErrorKind::Io;
    }

    SampleDatabase database_;
};

TEST_F(ReplaceDate, ConcernsTheRowsWithThatDateAndNoOthers) {
    AddRow("a", First);
    AddRow("b", Second);
    AddRow("c", Null{});
    AddRow("d", First);
    EXPECT_EQ(database_->ReplaceDate("Notes", "Seen", First, Third), 2U);
    EXPECT_EQ(Names(Third), "ad");
    EXPECT_EQ(Names(Second), "b");
    EXPECT_EQ(database_->ReplaceDate("Notes", "Seen", First, Third), 0U);
    database_.Reopen();
    EXPECT_EQ(Names(Third), "ad");
    EXPECT_EQ(database_.Rows("SELECT Name FROM Notes"), "a\nb\nc\nd") << "each in its place";
    database_.Close();
    EXPECT_EQ(StructuralFaults(database_.Path()), "");
}

TEST_F(ReplaceDate, ReachesRowsThatHaveOutgrownTheirPages) {
    for (int i = 0; i < 40; ++i)
        AddRow("a", First);
    database_.Execute("UPDATE Notes SET Name='" + std::string(250, 'b') + "'");
    EXPECT_EQ(database_->ReplaceDate("Notes", "Seen", First, Second), 40U);
    EXPECT_EQ(Names(Second), std::string(40, 'b'));
    database_.Close();
    EXPECT_EQ(StructuralFaults(database_.Path()), "");
}

TEST_F(ReplaceDate, IsSeenByStatements) {
    AddRow("a", First);
    AddRow("b", Second);
    EXPECT_EQ(database_.Rows("SELECT Name, Seen FROM Notes WHERE Seen=#1/2/2026#"), "");
    EXPECT_EQ(database_->ReplaceDate("Notes", "Seen", First, Date{46024}), 1U);
    EXPECT_EQ(database_.Rows("SELECT Name FROM Notes WHERE Seen=#1/2/2026#"), "a");
}

TEST_F(ReplaceDate, IsRefusedWhereRowsCouldNotBeToldApartAfterwards) {
    AddRow("a", First);
    AddRow("b", Second);
    EXPECT_EQ(Refusal("Seen", First, Second), ErrorKind::Duplicate);
    EXPECT_EQ(Names(First), "a");
}

TEST_F(ReplaceDate, IsRefusedForOtherFieldsAndThoseOfAnIndex) {
    EXPECT_EQ(Refusal("Name", First, Second), ErrorKind::NotSupported);
    EXPECT_EQ(Refusal("Made", First, Second), ErrorKind::NotSupported);
    EXPECT_EQ(Refusal("Gone", First, Second), ErrorKind::NotFound);
}

TEST_F(ReplaceDate, IsPartOfATransaction) {
    AddRow("a", First);
    database_->Flush();
    {
        const Transaction transaction(database_.Get());
        database_->ReplaceDate("Notes", "Seen", First, Second);
    }
    EXPECT_EQ(Names(First), "a");
}

}  // namespace
}  // namespace jet::testing
