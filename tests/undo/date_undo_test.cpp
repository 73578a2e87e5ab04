#include "undo/date_undo.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <span>
#include <string>
#include <utility>

#include "tests/undo/row_undo_fixture.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using RowKind = RowChange::Kind;

class DateUndoTest : public RowUndoTest {
  protected:
    static RowChange Difference(RowKind kind, const std::string& track, double time) {
        const std::vector<std::pair<std::string, Value>> values{{"UpdateTime", DateTime{time}},
                                                                {"Track", track}};
        RowChange change{
            .kind = kind, .table = "SpinnerID3Differences", .key = values, .fields = {}};
        for (const std::string name : {"Field", "ID3Value", "DBValue", "Artist", "Album"})
            change.key.emplace_back(name, Null());
        for (const auto& [name, value] : values)
            change.fields.push_back(kind == RowKind::Added ? FieldChange{name, Null(), value}
                                                           : FieldChange{name, value, Null()});
        return change;
    }
    static DateReplaced Replaced(double before, double after) {
        return {"SpinnerID3Differences", "UpdateTime", {before}, {after}, 2};
    }
    void AddRow(const std::string& track, double time) {
        const std::vector<FieldValue> fields{{"Track", track}, {"UpdateTime", DateTime{time}}};
        connection_->Insert("SpinnerID3Differences", fields);
    }
    /// Each row's track and day.
    std::vector<std::string> Differences() {
        std::vector<std::string> rows;
        const std::vector<std::string_view> fields{"Track", "UpdateTime"};
        connection_->Scan(
            "SpinnerID3Differences", fields, [&](RowKey, std::span<const Value> values) {
                rows.push_back(
                    std::get<std::string>(values[0]) + " " +
                    std::to_string(static_cast<int>(std::get<DateTime>(values[1]).days)));
            });
        std::ranges::sort(rows);
        return rows;
    }
};

TEST_F(DateUndoTest, GivesRowsTheirDatesBack) {
    AddRow("a", 12);
    AddRow("b", 12);
    const Records run{Replaced(11, 12), RowsSaved()};
    Undo({run});
    EXPECT_THAT(Differences(), ElementsAre("a 11", "b 11"));
    EXPECT_THAT(UndoDates({run}), ElementsAre(Outcome{.state = Outcome::State::WasSo}));
}

TEST_F(DateUndoTest, FollowsDatesThroughSeveralRuns) {
    AddRow("a", 13);
    AddRow("d", 13);
    const Records first{Difference(RowKind::Removed, "x", 10), Difference(RowKind::Added, "d", 11),
                        RowsSaved()},
        second{Difference(RowKind::Removed, "b", 11), Replaced(11, 12), RowsSaved()},
        third{Difference(RowKind::Removed, "c", 12), Replaced(12, 13), RowsSaved()};
    Undo({first, second, third});
    // "d" came with the first run; what was there before it has the date of then.
    EXPECT_THAT(Differences(), ElementsAre("a 11", "b 11", "c 11", "x 10"));
}

TEST_F(DateUndoTest, TakesBackNothingOfWhatARunDidNotSave) {
    AddRow("a", 11);
    AddRow("b", 11);
    const Records killed{Difference(RowKind::Removed, "b", 11), Replaced(11, 12)};
    Undo({killed});
    EXPECT_THAT(Differences(), ElementsAre("a 11", "b 11"));
}

TEST_F(DateUndoTest, GoesOnBehindARunThatDidNotSave) {
    AddRow("a", 13);
    AddRow("d", 13);
    const Records first{Difference(RowKind::Added, "d", 11), RowsSaved()}, killed{Replaced(11, 12)},
        last{Replaced(11, 13), RowsSaved()};
    Undo({first, killed, last});
    EXPECT_THAT(Differences(), ElementsAre("a 11"));
}

TEST_F(DateUndoTest, HasNothingToDoWhereAnUndoPutThemBack) {
    AddRow("a", 11);
    EXPECT_THAT(UndoDates({{Replaced(11, 12), RowsSaved()}, {Replaced(12, 11), RowsSaved()}}),
                IsEmpty());
}

TEST_F(DateUndoTest, LeavesRowsThatCannotBeToldFromOthers) {
    AddRow("a", 12);
    AddRow("new", 11);
    const std::vector<Outcome> outcomes = UndoDates({{Replaced(11, 12), RowsSaved()}});
    EXPECT_THAT(Differences(), ElementsAre("a 12", "new 11"));
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(outcomes[0].state, Outcome::State::Refused);
}

}  // namespace
}  // namespace quillon
