#include "library/library.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <variant>

#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr std::string_view AlbumTable = "Albums", TrackTable = "Tracks";
constexpr std::int64_t OwnPlayer = 1001;

std::string TextOf(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr ? "" : *text;
}

RowNumber NumberOf(const Value& value) {
    if (const auto* const number = std::get_if<std::int64_t>(&value))
        return static_cast<std::int32_t>(*number);
    if (const auto* const number = std::get_if<double>(&value))
        return static_cast<std::int32_t>(std::lround(*number));
    return std::nullopt;
}

Value ValueOf(RowNumber number) {
    if (!number) return Null{};
    return std::int64_t{*number};
}

std::string NameKey(std::string_view artist, std::string_view title) {
    return LowerCase(artist) + '\\' + LowerCase(title);
}

/// The part of a path by which its row is looked up.
std::string FileKey(std::string_view path) {
    return LowerCase(path.substr(path.rfind('\\') + 1));
}

/// Rows of one key stay in the file's order.
template <typename Row>
void Enter(std::vector<Row*>& rows, Row& row) {
    const auto isBefore = [](const Row* one, const Row* other) { return one->key < other->key; };
    rows.insert(std::upper_bound(rows.begin(), rows.end(), &row, isBefore), &row);
}

template <typename Row>
void Strike(std::vector<Row*>& rows, const Row& row) {
    std::erase(rows, &row);
}

/// Takes over what a field is to hold, where it is one of those that are kept here.
void Take(AlbumRow& album, const FieldValue& field) {
    if (field.name == "CDJID") album.cdjid = TextOf(field.value);
    if (field.name == "Artist") album.artist = TextOf(field.value);
    if (field.name == "Title") album.title = TextOf(field.value);
    if (field.name == "Tracks") album.count = MarkableNumber::OfNewRow(NumberOf(field.value));
}

void Take(TrackRow& track, const FieldValue& field) {
    if (field.name == "CDJID") track.cdjid = TextOf(field.value);
    if (field.name == "Title") track.title = TextOf(field.value);
    if (field.name == "Artist") track.artist = TextOf(field.value);
    if (field.name == "SoundFile") track.soundFile = TextOf(field.value);
    if (field.name == "Track") track.number = MarkableNumber::OfNewRow(NumberOf(field.value));
    if (field.name == "Minutes") track.minutes = NumberOf(field.value).value_or(0);
    if (field.name == "Seconds") track.seconds = NumberOf(field.value).value_or(0);
}

}  // namespace

Library::Library(Connection& connection) : connection_(connection) {
    constexpr std::array<std::string_view, 6> AlbumFields{"ID",    "CDJID",  "Artist",
                                                          "Title", "Tracks", "Player"};
    connection_.Scan(AlbumTable, AlbumFields, [this](RowKey key, std::span<const Value> row) {
        if (NumberOf(row[5]) != OwnPlayer) return;
        albums_.push_back({.key = key,
                           .id = AlbumId{NumberOf(row[0]).value_or(0)},
                           .cdjid = TextOf(row[1]),
                           .artist = TextOf(row[2]),
                           .title = TextOf(row[3]),
                           .count = MarkableNumber(NumberOf(row[4]))});
        List(albums_.back());
    });
    constexpr std::array<std::string_view, 8> TrackFields{
        "ID", "CDJID", "Track", "Title", "Artist", "SoundFile", "Minutes", "Seconds"};
    connection_.Scan(TrackTable, TrackFields, [this](RowKey key, std::span<const Value> row) {
        const std::string cdjid = TextOf(row[1]);
        if (IsNull(row[1]) || AlbumWith(cdjid) == nullptr) return;
        tracks_.push_back({.key = key,
                           .id = TrackId{NumberOf(row[0]).value_or(0)},
                           .cdjid = cdjid,
                           .title = TextOf(row[3]),
                           .artist = TextOf(row[4]),
                           .soundFile = TextOf(row[5]),
                           .cdjidBefore = cdjid,
                           .number = MarkableNumber(NumberOf(row[2])),
                           .minutes = NumberOf(row[6]).value_or(0),
                           .seconds = NumberOf(row[7]).value_or(0)});
        List(tracks_.back());
    });
}

void Library::List(AlbumRow& album) {
    Enter(albumsByName_[NameKey(album.artist, album.title)], album);
    if (!album.cdjid.empty()) Enter(albumsByCdjid_[LowerCase(album.cdjid)], album);
}

void Library::List(TrackRow& track) {
    Enter(tracksByFile_[FileKey(track.soundFile)], track);
    Enter(tracksByCdjid_[LowerCase(track.cdjid)], track);
    tracksById_.emplace(track.id, &track);
}

AlbumRow* Library::FindAlbum(std::string_view artist, std::string_view title) {
    const auto found = albumsByName_.find(NameKey(artist, title));
    return found == albumsByName_.end() || found->second.empty() ? nullptr : found->second.front();
}

AlbumRow* Library::AlbumWith(std::string_view cdjid) {
    const auto found = albumsByCdjid_.find(LowerCase(cdjid));
    return found == albumsByCdjid_.end() || found->second.empty() ? nullptr : found->second.front();
}

TrackRow* Library::FindTrack(std::string_view path) {
    const auto found = tracksByFile_.find(FileKey(path));
    if (found == tracksByFile_.end()) return nullptr;
    const std::string ending = LowerCase(path);
    const auto first = std::ranges::find_if(found->second, [&](const TrackRow* track) {
        return LowerCase(track->soundFile).ends_with(ending);
    });
    return first == found->second.end() ? nullptr : *first;
}

TrackRow* Library::FindTrack(TrackId id) {
    const auto found = tracksById_.find(id);
    return found == tracksById_.end() ? nullptr : found->second;
}

std::vector<TrackRow*> Library::TracksOf(std::string_view cdjid) {
    const auto found = tracksByCdjid_.find(LowerCase(cdjid));
    return found == tracksByCdjid_.end() ? std::vector<TrackRow*>() : found->second;
}

AlbumRow& Library::AddAlbum(std::span<const FieldValue> fields) {
    const AddedRow added = connection_.Insert(AlbumTable, fields);
    AlbumRow& album = albums_.emplace_back();
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
    track.key = added.key;
    track.id = TrackId{added.number};
    track.isNew = true;
    for (const FieldValue& field : fields)
        Take(track, field);
    List(track);
    return track;
}

void Library::Change(AlbumRow& album, std::span<const FieldValue> fields) {
    connection_.Update(AlbumTable, album.key, fields);
    Strike(albumsByName_[NameKey(album.artist, album.title)], album);
    if (!album.cdjid.empty()) Strike(albumsByCdjid_[LowerCase(album.cdjid)], album);
    for (const FieldValue& field : fields)
        Take(album, field);
    List(album);
}

void Library::Change(TrackRow& track, std::span<const FieldValue> fields) {
    connection_.Update(TrackTable, track.key, fields);
    Strike(tracksByFile_[FileKey(track.soundFile)], track);
    Strike(tracksByCdjid_[LowerCase(track.cdjid)], track);
    for (const FieldValue& field : fields)
        Take(track, field);
    List(track);
}

void Library::Remove(AlbumRow& album) {
    connection_.Delete(AlbumTable, album.key);
    album.isGone = true;
    Strike(albumsByName_[NameKey(album.artist, album.title)], album);
    if (!album.cdjid.empty()) Strike(albumsByCdjid_[LowerCase(album.cdjid)], album);
}

void Library::Remove(TrackRow& track) {
    connection_.Delete(TrackTable, track.key);
    track.isGone = true;
    Strike(tracksByFile_[FileKey(track.soundFile)], track);
    Strike(tracksByCdjid_[LowerCase(track.cdjid)], track);
    tracksById_.erase(track.id);
}

void Library::MarkAll() {
    for (AlbumRow& album : albums_)
        album.count.Mark();
    for (TrackRow& track : tracks_)
        track.number.Mark();
}

void Library::Save() {
    for (AlbumRow& album : albums_)
        Save(album);
    for (TrackRow& track : tracks_)
        Save(track);
}

void Library::Save(AlbumRow& album) {
    if (album.isGone || !album.count.NeedsSaving()) return;
    const FieldValue count{"Tracks", ValueOf(album.count.Truth())};
    connection_.Update(AlbumTable, album.key, std::span(&count, 1));
    album.count.Saved();
}

void Library::Save(TrackRow& track) {
    if (track.isGone || !track.number.NeedsSaving()) return;
    const FieldValue number{"Track", ValueOf(track.number.Truth())};
    connection_.Update(TrackTable, track.key, std::span(&number, 1));
    track.number.Saved();
}

}  // namespace quillon
