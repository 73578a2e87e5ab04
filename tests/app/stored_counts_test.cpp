#include "app/report/stored_counts.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillon {
namespace {

using Kind = RowChange::Kind;

RowChange Row(Kind kind, const std::string& table, std::int64_t id,
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
    const StoredCounts::Numbers numbers =
        NumbersOf({Row(Kind::Added, "Spinner", 1), Row(Kind::Added, "Spinner", 2),
                   Row(Kind::Changed, "Spinner", 2, {"Link"}), Row(Kind::Removed, "Spinner", 1),
                   Row(Kind::Removed, "Spinner", 7), Row(Kind::Added, "SpinnerArtist", 1),
                   Row(Kind::Added, "spinnerartist", 2), Row(Kind::Added, "Tracks", 3)});
    EXPECT_EQ(numbers.songsAdded, 1U);
    EXPECT_EQ(numbers.artistsAdded, 2U);
}

TEST(StoredCounts, CountRowsWhosePathIsAnotherOne) {
    const StoredCounts::Numbers numbers = NumbersOf(
        {Row(Kind::Changed, "Albums", 1, {"ImageFile", "Title"}),
         Row(Kind::Changed, "Tracks", 1, {"SoundFile"}),
         Row(Kind::Changed, "Playlists", 1, {"FilePath"}),
         Row(Kind::Changed, "Albums", 2, {"Count"}), Row(Kind::Added, "Tracks", 2, {"SoundFile"})});
    EXPECT_EQ(numbers.pathsChanged, 3U);
}

TEST(StoredCounts, CountAsOneTheTwoFieldsOfALength) {
    const StoredCounts::Numbers numbers = NumbersOf(
        {Row(Kind::Changed, "Tracks", 1, {"Minutes", "Seconds"}),
         Row(Kind::Changed, "Tracks", 2, {"Seconds", "Track"}),
         Row(Kind::Changed, "Spinner", 1, {"Genre"}), Row(Kind::Changed, "Albums", 1, {"Genre"})});
    EXPECT_EQ(numbers.valuesChanged, 4U);
}

}  // namespace
}  // namespace quillon
