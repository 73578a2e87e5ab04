#include "app/report/stored_counts.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/basic_text.h"
#include "platform/content_hash.h"
#include "undo/net_rows.h"

namespace quillon {
namespace {

struct TableField {
    std::string_view table, field;
};
constexpr std::array<TableField, 3> StoredPaths{
    {{"Albums", "ImageFile"}, {"Tracks", "SoundFile"}, {"Playlists", "FilePath"}}};

bool HoldsPath(const RowChange& row, std::string_view field) {
    return std::ranges::any_of(StoredPaths, [&](const TableField& path) {
        return EqualIgnoringCase(row.table, path.table) && EqualIgnoringCase(field, path.field);
    });
}

}  // namespace

void StoredCounts::Note(const RowChange& row) {
    if (row.kind == RowChange::Kind::Changed) return NoteChanged(row);
    const bool isSong = EqualIgnoringCase(row.table, "Spinner");
    if (!isSong && !EqualIgnoringCase(row.table, "SpinnerArtist")) return;
    std::size_t& count = isSong ? numbers_.songsAdded : numbers_.artistsAdded;
    const std::uint64_t key = ContentHash(KeyText(row.table, row.key));
    if (row.kind == RowChange::Kind::Removed)
        count -= added_.erase(key);
    else if (added_.insert(key).second)
        ++count;
}

void StoredCounts::NoteChanged(const RowChange& row) {
    if (std::ranges::any_of(row.fields,
                            [&](const FieldChange& field) { return HoldsPath(row, field.field); }))
        ++numbers_.pathsChanged;
    if (!EqualIgnoringCase(row.table, "Tracks") && !EqualIgnoringCase(row.table, "Spinner")) return;
    bool hasLength = false;
    for (const FieldChange& field : row.fields) {
        const bool isOfLength =
            EqualIgnoringCase(field.field, "Minutes") || EqualIgnoringCase(field.field, "Seconds");
        if (!isOfLength || !std::exchange(hasLength, true)) ++numbers_.valuesChanged;
    }
}

}  // namespace quillon
