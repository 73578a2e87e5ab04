#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "app/journal/net_changes.h"

namespace quillon {
namespace {

constexpr std::int64_t Many = 1000;

RowChange RowOfSong(RowChange::Kind kind, std::int64_t number, const std::string& before,
                    const std::string& after) {
    const auto value = [](const std::string& text) {
        return text.empty() ? Value(Null{}) : Value(text);
    };
    return {.kind = kind,
            .table = "Tracks",
            .key = {{"ID", number}},
            .fields = {{"Title", value(before), value(after)}}};
}

std::vector<ChangeRecord> ManyRows(RowChange::Kind kind) {
    std::vector<ChangeRecord> records;
    for (std::int64_t i = 1; i <= Many; ++i)
        records.emplace_back(kind == RowChange::Kind::Added ? RowOfSong(kind, i, "", "song")
                                                            : RowOfSong(kind, i, "song", ""));
    return records;
}

std::size_t CountOf(const NetChanges& changes) {
    std::size_t count = changes.rows.size();
    for (const CountOfRows& further : changes.furtherRows)
        count += further.count;
    return count;
}

TEST(RowCollector, HoldsTheFirstOfManyRowsAndCountsTheRest) {
    for (const auto kind : {RowChange::Kind::Added, RowChange::Kind::Removed}) {
        const NetChanges changes = NetChangesOf(ManyRows(kind));
        ASSERT_EQ(changes.furtherRows.size(), 1U);
        EXPECT_EQ(changes.furtherRows[0].kind, kind);
        EXPECT_EQ(changes.furtherRows[0].table, "Tracks");
        EXPECT_EQ(CountOf(changes), std::size_t{Many});
        EXPECT_LT(changes.rows.size(), 500U);
        EXPECT_TRUE(ChangesLibrary(changes));
    }
}

TEST(RowCollector, LeavesOutAnyOfManyNewRowsThatGoAgain) {
    std::vector<ChangeRecord> records = ManyRows(RowChange::Kind::Added);
    records.emplace_back(RowOfSong(RowChange::Kind::Changed, Many, "song", "other"));
    for (const std::int64_t number : {std::int64_t{1}, Many})
        records.emplace_back(RowOfSong(RowChange::Kind::Removed, number, "other", ""));
    EXPECT_EQ(CountOf(NetChangesOf(records)), std::size_t{Many} - 2);
}

TEST(RowCollector, LeavesOutAnyOfManyRemovedRowsThatComeBackAsTheyWere) {
    std::vector<ChangeRecord> records = ManyRows(RowChange::Kind::Removed);
    for (const std::int64_t number : {std::int64_t{1}, Many})
        records.emplace_back(RowOfSong(RowChange::Kind::Added, number, "", "song"));
    EXPECT_EQ(CountOf(NetChangesOf(records)), std::size_t{Many} - 2);
}

TEST(RowCollector, TellsOfARemovedRowThatComesBackOtherwiseThatItIsChanged) {
    std::vector<ChangeRecord> records = ManyRows(RowChange::Kind::Removed);
    for (const std::int64_t number : {std::int64_t{1}, Many})
        records.emplace_back(RowOfSong(RowChange::Kind::Added, number, "", "other"));
    const NetChanges changes = NetChangesOf(records);
    EXPECT_EQ(CountOf(changes), std::size_t{Many});
    EXPECT_EQ(changes.rows.front(), RowOfSong(RowChange::Kind::Changed, 1, "song", "other"));
    EXPECT_EQ(changes.rows.back().kind, RowChange::Kind::Changed);
    EXPECT_EQ(changes.rows.back().key.front().second, Value(Many));
}

/// A row of the list of differences, which has no key but all that it holds.
RowChange Difference(RowChange::Kind kind, std::int64_t number, double time) {
    const std::vector<std::pair<std::string, Value>> values{
        {"UpdateTime", DateTime{time}}, {"Field", "Genre"}, {"Track", std::to_string(number)}};
    RowChange change{.kind = kind, .table = "SpinnerID3Differences", .key = values, .fields = {}};
    for (const auto& [name, value] : values) {
        if (kind == RowChange::Kind::Added) change.fields.push_back({name, Null{}, value});
        if (kind == RowChange::Kind::Removed) change.fields.push_back({name, value, Null{}});
    }
    return change;
}

/// Journals of runs that wrote each row anew are told like the others.
TEST(RowCollector, CountsDifferencesThatComeBackWithAnotherTime) {
    std::vector<ChangeRecord> records;
    for (std::int64_t i = 1; i <= Many; ++i)
        records.emplace_back(Difference(RowChange::Kind::Removed, i, 46000));
    for (std::int64_t i = 3; i <= Many + 1; ++i)
        records.emplace_back(Difference(RowChange::Kind::Added, i, 46001));
    const NetChanges changes = NetChangesOf(records);
    ASSERT_EQ(changes.rows.size(), 3U);
    EXPECT_EQ(changes.rows[0].kind, RowChange::Kind::Removed);
    EXPECT_EQ(changes.rows[1].kind, RowChange::Kind::Removed);
    EXPECT_EQ(changes.rows[2].kind, RowChange::Kind::Added);
    ASSERT_EQ(changes.asBefore.size(), 1U);
    EXPECT_EQ(changes.asBefore[0].count, std::size_t{Many - 2});
}

TEST(RowCollector, CountsRowsThatOnlyGetAnotherDateWithoutThoseThatGo) {
    const DateReplaced replaced{"SpinnerID3Differences", "UpdateTime", {46000}, {46001}, 50};
    const std::vector<ChangeRecord> before{Difference(RowChange::Kind::Removed, 1, 46000),
                                           replaced},
        after{replaced, Difference(RowChange::Kind::Removed, 1, 46001)},
        back{Difference(RowChange::Kind::Removed, 1, 46000), replaced,
             Difference(RowChange::Kind::Added, 1, 46001)};
    for (const auto& [records, rows, count] :
         {std::tuple{before, 1U, 50U}, std::tuple{after, 1U, 49U}, std::tuple{back, 0U, 51U}}) {
        const NetChanges changes = NetChangesOf(records);
        EXPECT_EQ(changes.rows.size(), rows);
        ASSERT_EQ(changes.asBefore.size(), 1U);
        EXPECT_EQ(changes.asBefore[0].count, count);
    }
}

}  // namespace
}  // namespace quillon
