#include "app/report/stored_counts.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillon {
namespace {

using Kind = RowChange::Kind;

RowChange ChangeOf(Kind kind, const std::string& table, std::int64_t id,
                   std::vector<std::string> fields = {}) {
    RowChange row{.kind = kind, .table = table, .key = {{"ID", id}}, .fields = {}};
    for (const std::string& field : fields)
        row.fields.push_back({field, "old", "new"});
    return row;
}

StoredCounts::Numbers NumbersOf(const std::vector<RowChange>& rows) {
    StoredCounts counts;
    for (const RowChange& row : rows)
        counts.Note(row);
    return counts.Current();
}

TEST(StoredCounts, CountSongsAndArtistsThatStay) {
    const StoredCounts::Numbers numbers = NumbersOf(
        {ChangeOf(Kind::Added, "Spinner", 1), ChangeOf(Kind::Added, "Spinner", 2),
         ChangeOf(Kind::Changed, "Spinner", 2, {"Link"}), ChangeOf(Kind::Removed, "Spinner", 1),
         ChangeOf(Kind::Removed, "Spinner", 7), ChangeOf(Kind::Added, "SpinnerArtist", 1),
         ChangeOf(Kind::Added, "spinnerartist", 2), ChangeOf(Kind::Added, "Tracks", 3)});
    EXPECT_EQ(numbers.songsAdded, 1U);
    EXPECT_EQ(numbers.artistsAdded, 2U);
}

TEST(StoredCounts, CountRowsWhosePathIsAnotherOne) {
    const StoredCounts::Numbers numbers =
        NumbersOf({ChangeOf(Kind::Changed, "Albums", 1, {"ImageFile", "Title"}),
                   ChangeOf(Kind::Changed, "Tracks", 1, {"SoundFile"}),
                   ChangeOf(Kind::Changed, "Playlists", 1, {"FilePath"}),
                   ChangeOf(Kind::Changed, "Albums", 2, {"Count"}),
                   ChangeOf(Kind::Added, "Tracks", 2, {"SoundFile"})});
    EXPECT_EQ(numbers.pathsChanged, 3U);
}

TEST(StoredCounts, CountAsOneTheTwoFieldsOfALength) {
    const StoredCounts::Numbers numbers =
        NumbersOf({ChangeOf(Kind::Changed, "Tracks", 1, {"Minutes", "Seconds"}),
                   ChangeOf(Kind::Changed, "Tracks", 2, {"Seconds", "Track"}),
                   ChangeOf(Kind::Changed, "Spinner", 1, {"Genre"}),
                   ChangeOf(Kind::Changed, "Albums", 1, {"Genre"})});
    EXPECT_EQ(numbers.valuesChanged, 4U);
}

}  // namespace
}  // namespace quillon
