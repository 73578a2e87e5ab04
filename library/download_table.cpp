#include "library/download_table.h"

#include <array>

namespace quillon {
namespace {

constexpr std::string_view SpinnerTable = "Spinner";

void Take(SongRow& song, const FieldValue& field, SharedTexts& texts) {
    if (field.name == "Artist") song.artist = texts.Keep(field.value);
    if (field.name == "Album") song.album = texts.Keep(field.value);
    if (field.name == "Genre") song.genre = texts.Keep(field.value);
    if (field.name == "Song") song.song = RowText(field.value);
    if (field.name == "Exclude") song.isExcluded = IsTrue(field.value);
}

bool HasAllNames(const SongRow& song) {
    return !song.artist.IsNull() && !song.album.IsNull() && !song.song.IsNull();
}

}  // namespace

DownloadTable::DownloadTable(Connection& connection) : connection_(connection), rules_(connection) {
    constexpr std::array<std::string_view, 6> Fields{"ID",   "Artist", "Album",
                                                     "Song", "Genre",  "Exclude"};
    connection_.Scan(SpinnerTable, Fields, [this](RowKey key, std::span<const Value> row) {
        songs_.push_back({.key = key,
                          .id = SongId{NumberOf(row[0]).value_or(0)},
                          .artist = texts_.Keep(row[1]),
                          .album = texts_.Keep(row[2]),
                          .genre = texts_.Keep(row[4]),
                          .song = RowText(row[3]),
                          .isExcluded = IsTrue(row[5])});
        List(static_cast<std::uint32_t>(songs_.size() - 1));
    });
}

std::uint32_t DownloadTable::HashOfNames(std::string_view artist, std::string_view album,
                                         std::string_view song) const {
    if (!last_.isKnown || last_.album != album || last_.artist != artist) {
        last_ = {.artist = std::string(artist),
                 .album = std::string(album),
                 .hash = rules_.Hash(album, rules_.Hash(artist)),
                 .isKnown = true};
    }
    return rules_.Hash(song, last_.hash);
}

/// Of songs with the same names, and of an artist's songs, the first one is all that is looked for.
void DownloadTable::List(std::uint32_t place) {
    const SongRow& song = songs_[place];
    if (song.artist.IsNull()) return;
    // A new row may lie before others of its artist, where a page had room for it.
    const bool isBehindLast = place > 0 && songs_[place - 1].artist.IsSameAs(song.artist) &&
                              songs_[place - 1].key < song.key;
    const SongRow* const first = isBehindLast ? &songs_[place - 1] : FirstOf(song.artist);
    if (first == nullptr || song.key < first->key)
        firstByArtist_.Add(rules_.Hash(song.artist), place);
    if (HasAllNames(song) && Find(song.artist, song.album, song.song) == nullptr)
        byNames_.Add(HashOfNames(song.artist, song.album, song.song), place);
}

const SongRow* DownloadTable::Find(std::string_view artist, std::string_view album,
                                   std::string_view song) const {
    const SongRow* found = nullptr;
    byNames_.ForEach(HashOfNames(artist, album, song), [&](RowIndex::Row row) {
        const SongRow& known = songs_[row];
        if (rules_.AreEqual(known.song, song) && rules_.AreEqual(known.album, album) &&
            rules_.AreEqual(known.artist, artist))
            found = &known;
    });
    return found;
}

const SongRow* DownloadTable::FirstOf(std::string_view artist) const {
    const SongRow* found = nullptr;
    firstByArtist_.ForEach(rules_.Hash(artist), [&](RowIndex::Row row) {
        const bool isBefore = found == nullptr || songs_[row].key < found->key;
        if (isBefore && rules_.AreEqual(songs_[row].artist, artist)) found = &songs_[row];
    });
    return found;
}

Value DownloadTable::Read(const SongRow& song, std::string_view field) const {
    return connection_.Read(SpinnerTable, song.key, field);
}

SongId DownloadTable::NextId() const {
    return SongId{connection_.NextNumber(SpinnerTable)};
}

SongRow& DownloadTable::Add(std::span<const FieldValue> fields) {
    const AddedRow added = connection_.Insert(SpinnerTable, fields);
    SongRow& song = songs_.emplace_back();
    song.key = added.key;
    song.id = SongId{added.number};
    for (const FieldValue& field : fields)
        Take(song, field, texts_);
    List(static_cast<std::uint32_t>(songs_.size() - 1));
    return song;
}

void DownloadTable::SetLink(SongRow& song, const std::string& fileName) {
    Change(song, {"FileName", fileName});
}

void DownloadTable::SetGenre(SongRow& song, const std::string& genre) {
    Change(song, {"Genre", genre});
}

void DownloadTable::Change(SongRow& song, const FieldValue& field) {
    connection_.Update(SpinnerTable, song.key, std::span(&field, 1));
    Take(song, field, texts_);
}

}  // namespace quillon
