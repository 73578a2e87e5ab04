#include "run/genre_dictionary.h"

#include <cstdint>
#include <functional>

namespace quillon {
namespace {

std::uint32_t HashOf(std::string_view key) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(key));
}

/// Whether a song's names make the key.
bool HasKey(const SongRow& song, std::string_view key) {
    const std::string_view artist = song.artist, album = song.album, title = song.song;
    return key.size() == artist.size() + album.size() + title.size() && key.starts_with(artist) &&
           key.substr(artist.size()).starts_with(album) && key.ends_with(title);
}

}  // namespace

void GenreDictionary::Add(const SongRow& song, std::string_view genre) {
    SetKey(song.artist, song.album, song.song);
    if (FindKey() != nullptr) return;
    byKey_.Add(HashOf(key_), static_cast<RowIndex::Row>(entries_.size()));
    entries_.push_back({&song, &*genres_.emplace(genre).first});
}

const std::string& GenreDictionary::Find(std::string_view artist, std::string_view album,
                                         std::string_view song) const {
    static const std::string none;
    SetKey(artist, album, song);
    const Entry* const found = FindKey();
    return found == nullptr ? none : *found->genre;
}

const GenreDictionary::Entry* GenreDictionary::FindKey() const {
    const Entry* found = nullptr;
    byKey_.ForEach(HashOf(key_), [&](RowIndex::Row row) {
        if (HasKey(*entries_[row].song, key_)) found = &entries_[row];
    });
    return found;
}

void GenreDictionary::SetKey(std::string_view artist, std::string_view album,
                             std::string_view song) const {
    key_.assign(artist).append(album).append(song);
}

}  // namespace quillon
