#include "library/library.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <variant>

namespace quillon {
namespace {

constexpr std::string_view AlbumTable = "Albums", TrackTable = "Tracks";
constexpr std::int64_t OwnPlayer = 1001;

Value ValueOf(RowNumber number) {
    if (!number) return Null{};
    return std::int64_t{*number};
}

std::optional<DateTime> DateOf(const Value& value) {
    const auto* const date = std::get_if<DateTime>(&value);
    return date == nullptr ? std::nullopt : std::optional(*date);
}

/// Where the path begins in a stored one, in front of which something may stand: at the last drive
/// or the last two backslashes. 0 where there is neither.
std::size_t StartOfPath(std::string_view stored) {
    // Nearly all begin with the only drive that is in them.
    const bool beginsWithDrive = stored.size() > 2 && stored[1] == ':' && stored[2] == '\\';
    if (beginsWithDrive && stored.find(':', 2) == std::string_view::npos &&
        stored.find("\\\\", 2) == std::string_view::npos)
        return 0;
    for (std::size_t end = stored.size(); end > 0;) {
        // A search for two characters costs far more.
        const std::size_t backslash = stored.substr(0, end).rfind('\\');
        if (backslash == std::string_view::npos || backslash == 0) return 0;
        const char before = stored[backslash - 1];
        if (before == '\\') return backslash - 1;
        if (before == ':' && backslash >= 2) return backslash - 2;
        end = backslash;
    }
    return 0;
}

/// The part by which paths are looked up: stored ones that end in a path with a drive or share
/// have it in common with that.
std::string_view PathKey(std::string_view path) {
    return path.substr(StartOfPath(path));
}

bool HasStart(std::string_view path) {
    return path.find(":\\") != std::string_view::npos ||
           path.find("\\\\") != std::string_view::npos;
}

std::uint32_t HashOfId(TrackId id) {
    constexpr std::uint32_t Odd = 0x9E3779B1;
    return static_cast<std::uint32_t>(id) * Odd;
}

/// Takes over what a field is to hold, where it is one of those that are kept here.
void Take(AlbumRow& album, const FieldValue& field) {
    if (field.name == "CDJID") album.cdjid = RowText(field.value);
    if (field.name == "Artist") album.artist = RowText(field.value);
    if (field.name == "Title") album.title = RowText(field.value);
    if (field.name == "ImageFile") album.imageFile = RowText(field.value);
    if (field.name == "Tracks") album.count = MarkableNumber::OfNewRow(NumberOf(field.value));
    if (field.name == "Player") album.isOwn = NumberOf(field.value) == OwnPlayer;
}

void Take(TrackRow& track, const FieldValue& field, SharedTexts& texts) {
    if (field.name == "CDJID") {
        if (track.cdjidBefore.IsNull()) track.cdjidBefore = track.cdjid;
        track.cdjid = texts.Keep(field.value);
    }
    if (field.name == "Title") track.title = RowText(field.value);
    if (field.name == "Artist") track.artist = texts.Keep(field.value);
    if (field.name == "SoundFile") track.soundFile = RowText(field.value);
    if (field.name == "Track") track.number = MarkableNumber::OfNewRow(NumberOf(field.value));
    if (field.name == "Minutes") track.minutes = NumberOf(field.value);
    if (field.name == "Seconds") track.seconds = NumberOf(field.value);
    if (field.name == "DateAdded") track.added = DateOf(field.value);
}

/// Each row once, in the file's order; as an index gives them they are mostly the other way round.
template <typename Row>
std::vector<Row*> InOrder(std::vector<Row*> rows) {
    const auto comesBefore = [](const Row* a, const Row* b) { return a->key < b->key; };
    std::ranges::reverse(rows);
    if (!std::ranges::is_sorted(rows, comesBefore)) std::ranges::sort(rows, comesBefore);
    const auto repeated = std::ranges::unique(rows);
    rows.erase(repeated.begin(), repeated.end());
    return rows;
}

/// The wanted ones among the rows that an index has for a hash.
template <typename Row, typename IsWanted>
std::vector<Row*> RowsWith(const RowIndex& index, std::uint32_t hash, std::deque<Row>& rows,
                           IsWanted isWanted) {
    std::vector<Row*> found;
    index.ForEach(hash, [&](RowIndex::Row place) {
        Row& row = rows[place];
        if (!row.isGone && isWanted(row)) found.push_back(&row);
    });
    return InOrder(std::move(found));
}

/// Of two rows that are wanted the one that comes first in the file.
template <typename Row>
Row* First(Row* one, Row* other) {
    return one != nullptr && one->key < other->key ? one : other;
}

}  // namespace

Library::Library(Connection& connection) : connection_(connection), rules_(connection) {
    constexpr std::array<std::string_view, 7> AlbumFields{"ID",     "CDJID",  "Artist",   "Title",
                                                          "Tracks", "Player", "ImageFile"};
    connection_.Scan(AlbumTable, AlbumFields, [this](RowKey key, std::span<const Value> row) {
        albums_.push_back({.place = static_cast<std::uint32_t>(albums_.size()),
                           .key = key,
                           .id = AlbumId{NumberOf(row[0]).value_or(0)},
                           .cdjid = RowText(row[1]),
                           .artist = RowText(row[2]),
                           .title = RowText(row[3]),
                           .imageFile = RowText(row[6]),
                           .count = MarkableNumber(NumberOf(row[4])),
                           .isOwn = NumberOf(row[5]) == OwnPlayer});
        List(albums_.back());
    });
    constexpr std::array<std::string_view, 9> TrackFields{
        "ID", "CDJID", "Track", "Title", "Artist", "SoundFile", "Minutes", "Seconds", "DateAdded"};
    connection_.Scan(TrackTable, TrackFields, [this](RowKey key, std::span<const Value> row) {
        TrackRow& track =
            tracks_.emplace_back(TrackRow{.place = static_cast<std::uint32_t>(tracks_.size()),
                                          .key = key,
                                          .id = TrackId{NumberOf(row[0]).value_or(0)},
                                          .title = RowText(row[3]),
                                          .soundFile = RowText(row[5]),
                                          .cdjid = texts_.Keep(row[1]),
                                          .artist = texts_.Keep(row[4]),
                                          .number = MarkableNumber(NumberOf(row[2])),
                                          .minutes = NumberOf(row[6]),
                                          .seconds = NumberOf(row[7]),
                                          .added = DateOf(row[8])});
        // As the track before, mostly, which is of the same album.
        const bool isOfLast = tracks_.size() > 1 && tracks_.end()[-2].cdjid.IsSameAs(track.cdjid);
        track.isOwn = isOfLast ? tracks_.end()[-2].isOwn : AlbumOf(track) != nullptr;
        List(track);
    });
}

std::uint32_t Library::HashOfNames(std::string_view artist, std::string_view title) const {
    return rules_.Hash(title, rules_.Hash(artist));
}

void Library::List(const AlbumRow& album) {
    albumsByName_.Add(HashOfNames(album.artist, album.title), album.place);
    albumsByCdjid_.Add(rules_.Hash(album.cdjid), album.place);
}

void Library::List(const TrackRow& track) {
    tracksByFile_.Add(rules_.Hash(PathKey(track.soundFile)), track.place);
    // Tracks of one album mostly follow each other.
    if (!lastListed_.IsSameAs(track.cdjid) || track.cdjid.IsNull()) {
        lastListed_ = track.cdjid;
        lastHash_ = rules_.Hash(track.cdjid);
    }
    tracksByCdjid_.Add(lastHash_, track.place);
    if (areIdsListed_) tracksById_.Add(HashOfId(track.id), track.place);
}

/// Most runs ask for no track by its key.
void Library::ListIds() {
    if (std::exchange(areIdsListed_, true)) return;
    for (const TrackRow& track : tracks_)
        tracksById_.Add(HashOfId(track.id), track.place);
}

template <typename IsWanted>
AlbumRow* Library::FirstAlbum(const RowIndex& index, std::uint32_t hash, IsWanted isWanted) {
    AlbumRow* first = nullptr;
    index.ForEach(hash, [&](RowIndex::Row row) {
        AlbumRow& album = albums_[row];
        if (!album.isGone && isWanted(album)) first = First(first, &album);
    });
    return first;
}

bool Library::HasNames(const AlbumRow& album, std::string_view artist,
                       std::string_view title) const {
    return rules_.AreEqual(album.title, title) && rules_.AreEqual(album.artist, artist);
}

AlbumRow* Library::FindAlbum(std::string_view artist, std::string_view title) {
    return FirstAlbum(albumsByName_, HashOfNames(artist, title), [&](const AlbumRow& album) {
        return album.isOwn && HasNames(album, artist, title);
    });
}

std::vector<AlbumRow*> Library::AlbumsNamed(std::string_view artist, std::string_view title) {
    return RowsWith(albumsByName_, HashOfNames(artist, title), albums_,
                    [&](const AlbumRow& album) { return HasNames(album, artist, title); });
}

bool Library::IsStored(const AlbumRow& album) const {
    return connection_.Has(AlbumTable, album.key);
}

AlbumRow* Library::AlbumWith(std::string_view cdjid) {
    if (cdjid.empty()) return nullptr;
    return FirstAlbum(albumsByCdjid_, rules_.Hash(cdjid), [&](const AlbumRow& album) {
        return album.isOwn && rules_.AreEqual(album.cdjid, cdjid);
    });
}

std::vector<AlbumRow*> Library::AlbumsWith(std::string_view cdjid) {
    return RowsWith(albumsByCdjid_, rules_.Hash(cdjid), albums_, [&](const AlbumRow& album) {
        return !album.cdjid.IsNull() && rules_.AreEqual(album.cdjid, cdjid);
    });
}

TrackRow* Library::FindTrack(std::string_view path) {
    TrackRow* first = nullptr;
    const auto look = [&](TrackRow& track) {
        if (!track.isOwn || track.isGone || !rules_.EndsWith(track.soundFile, path)) return;
        // Another song may have got the name of a file that is missing.
        const bool isOther = first != nullptr && first->isWaiting != track.isWaiting;
        first = isOther ? (track.isWaiting ? first : &track) : First(first, &track);
    };
    if (HasStart(path)) {
        tracksByFile_.ForEach(rules_.Hash(PathKey(path)),
                              [&](RowIndex::Row row) { look(tracks_[row]); });
    } else {
        std::ranges::for_each(tracks_, look);
    }
    return first;
}

TrackRow* Library::FindTrack(TrackId id) {
    ListIds();
    TrackRow* first = nullptr;
    tracksById_.ForEach(HashOfId(id), [&](RowIndex::Row row) {
        TrackRow& track = tracks_[row];
        if (!track.isGone && track.id == id) first = First(first, &track);
    });
    return first;
}

std::vector<TrackRow*> Library::TracksOf(std::string_view cdjid) {
    return RowsWith(tracksByCdjid_, rules_.Hash(cdjid), tracks_, [&](const TrackRow& track) {
        return !track.cdjid.IsNull() && rules_.AreEqual(track.cdjid, cdjid);
    });
}

AlbumRow& Library::AddAlbum(std::span<const FieldValue> fields) {
    const AddedRow added = connection_.Insert(AlbumTable, fields);
    AlbumRow& album = albums_.emplace_back();
    album.place = static_cast<std::uint32_t>(albums_.size() - 1);
    album.key = added.key;
    album.id = AlbumId{added.number};
    album.isNew = true;
    for (const FieldValue& field : fields)
        Take(album, field);
    List(album);
    return album;
}

TrackRow& Library::AddTrack(std::span<const FieldValue> fields) {
    const AddedRow added = connection_.Insert(TrackTable, fields);
    TrackRow& track = tracks_.emplace_back();
    track.place = static_cast<std::uint32_t>(tracks_.size() - 1);
    track.key = added.key;
    track.id = TrackId{added.number};
    track.isNew = true;
    for (const FieldValue& field : fields)
        Take(track, field, texts_);
    track.isOwn = AlbumOf(track) != nullptr;
    List(track);
    return track;
}

void Library::Change(AlbumRow& album, std::span<const FieldValue> fields) {
    connection_.Update(AlbumTable, album.key, fields);
    for (const FieldValue& field : fields)
        Take(album, field);
    List(album);
}

void Library::Change(TrackRow& track, std::span<const FieldValue> fields) {
    connection_.Update(TrackTable, track.key, fields);
    for (const FieldValue& field : fields)
        Take(track, field, texts_);
    track.isOwn = AlbumOf(track) != nullptr;
    List(track);
}

void Library::Remove(AlbumRow& album) {
    connection_.Delete(AlbumTable, album.key);
    album.isGone = true;
}

void Library::Remove(TrackRow& track) {
    connection_.Delete(TrackTable, track.key);
    track.isGone = true;
}

void Library::MarkAll() {
    for (AlbumRow& album : albums_) {
        if (album.isOwn) album.count.Mark();
    }
    for (TrackRow& track : tracks_) {
        if (!track.isOwn) continue;
        track.number.Mark();
        if (track.tagNumber) track.number.Set(track.tagNumber);
    }
}

void Library::Save() {
    for (AlbumRow& album : albums_) {
        if (album.isGone || !album.count.NeedsSaving()) continue;
        const FieldValue count{"Tracks", ValueOf(album.count.Truth())};
        connection_.Update(AlbumTable, album.key, std::span(&count, 1));
        album.count.Saved();
    }
    for (TrackRow& track : tracks_) {
        if (track.isGone || !track.number.NeedsSaving()) continue;
        const FieldValue number{"Track", ValueOf(track.number.Truth())};
        connection_.Update(TrackTable, track.key, std::span(&number, 1));
        track.number.Saved();
    }
}

}  // namespace quillon
