#include <cstdint>
#include <gtest/gtest.h>
#include <string>
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

}  // namespace
}  // namespace quillon
