#include "library/playlist_table.h"

#include <array>

namespace quillon {
namespace {

constexpr std::string_view PlaylistsTable = "Playlists";

void Take(PlaylistRow& row, const FieldValue& field) {
    if (field.name == "FilePath") row.folder = RowText(field.value);
    if (field.name == "Filename") row.name = RowText(field.value);
    if (field.name == "Type") row.type = RowText(field.value);
    if (field.name == "AutoGenre") row.byGenre = IsTrue(field.value);
    if (field.name == "AutoArtist") row.byArtist = IsTrue(field.value);
}

}  // namespace

PlaylistTable::PlaylistTable(Connection& connection) : connection_(connection), rules_(connection) {
    constexpr std::array<std::string_view, 5> Fields{"FilePath", "Filename", "Type", "AutoGenre",
                                                     "AutoArtist"};
    connection_.Scan(PlaylistsTable, Fields, [this](RowKey key, std::span<const Value> row) {
        rows_.push_back({.key = key,
                         .folder = RowText(row[0]),
                         .name = RowText(row[1]),
                         .type = RowText(row[2]),
                         .byGenre = IsTrue(row[3]),
                         .byArtist = IsTrue(row[4])});
        List(static_cast<std::uint32_t>(rows_.size() - 1));
    });
}

std::uint32_t PlaylistTable::HashOf(std::string_view folder, std::string_view name) const {
    return rules_.Hash(name, rules_.Hash(folder));
}

/// Where a file has several rows the first one has it.
void PlaylistTable::List(std::uint32_t place) {
    const PlaylistRow& row = rows_[place];
    if (Find(row.folder, row.name) == nullptr) byFile_.Add(HashOf(row.folder, row.name), place);
}

PlaylistRow* PlaylistTable::Find(std::string_view folder, std::string_view name) {
    PlaylistRow* found = nullptr;
    byFile_.ForEach(HashOf(folder, name), [&](RowIndex::Row place) {
        PlaylistRow& row = rows_[place];
        if (rules_.AreEqual(row.name, name) && rules_.AreEqual(row.folder, folder)) found = &row;
    });
    return found;
}

void PlaylistTable::Add(std::span<const FieldValue> fields) {
    const AddedRow added = connection_.Insert(PlaylistsTable, fields);
    PlaylistRow& row = rows_.emplace_back();
    row.key = added.key;
    for (const FieldValue& field : fields)
        Take(row, field);
    List(static_cast<std::uint32_t>(rows_.size() - 1));
}

void PlaylistTable::Change(PlaylistRow& row, const FieldValue& field) {
    connection_.Update(PlaylistsTable, row.key, std::span(&field, 1));
    Take(row, field);
}

}  // namespace quillon
