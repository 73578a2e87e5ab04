#include "playlists/track_index.h"

#include <array>
#include <string>
#include <variant>

#include "database/snapshot_file.h"
#include "run/paths.h"

namespace quillon {
namespace {

std::uint32_t IdHash(std::int32_t id) {
    return MixedHash(static_cast<std::uint32_t>(id));
}

std::uint32_t PlaceHash(TextPool::Number album, std::int32_t number) {
    return MixedHash(album, static_cast<std::uint32_t>(number));
}

/// What stays when the file is renamed in its folder.
std::uint32_t OriginFingerprint(std::string_view soundFile, const Value& dateAdded) {
    std::string origin(soundFile.substr(0, soundFile.rfind('\\') + 1));
    if (const auto* const date = std::get_if<DateTime>(&dateAdded))
        origin += std::to_string(date->days);
    return Fingerprint(origin);
}

SongTraits TraitsOf(const Value& soundFile, const Value& dateAdded) {
    const auto* const text = std::get_if<std::string>(&soundFile);
    std::string_view path = text == nullptr ? std::string_view() : *text;
    path.remove_prefix(GetDrive(path).size());
    return {.soundFile = Fingerprint(path), .origin = OriginFingerprint(path, dateAdded)};
}

std::int32_t NumberOf(const Value& value) {
    const auto* const number = std::get_if<std::int64_t>(&value);
    return number == nullptr ? 0 : static_cast<std::int32_t>(*number);
}

}  // namespace

TrackIndex::TrackIndex(Connection& connection) {
    constexpr std::array<std::string_view, 5> Fields{"ID", "CDJID", "Track", "SoundFile",
                                                     "DateAdded"};
    connection.Scan("Tracks", Fields, [this](RowKey, std::span<const Value> row) {
        const auto* const cdjid = std::get_if<std::string>(&row[1]);
        if (cdjid == nullptr) return;
        Add({.id = NumberOf(row[0]),
             .number = NumberOf(row[2]),
             .album = cdjids_.Add(*cdjid),
             .traits = TraitsOf(row[3], row[4])});
    });
}

void TrackIndex::Add(const IndexedTrack& track) {
    const auto row = static_cast<HashIndex::Row>(tracks_.size());
    // Numbers may be taken twice in an album; then the first row has the place.
    if (FindId(track.id) == nullptr) byId_.Add(IdHash(track.id), row);
    if (Find(track.album, track.number) == nullptr)
        byPlace_.Add(PlaceHash(track.album, track.number), row);
    tracks_.push_back(track);
}

const IndexedTrack* TrackIndex::Find(TextPool::Number album, std::int32_t number) const {
    const auto row = byPlace_.Find(PlaceHash(album, number), [&](HashIndex::Row at) {
        return tracks_[at].album == album && tracks_[at].number == number;
    });
    return row ? &tracks_[*row] : nullptr;
}

const IndexedTrack* TrackIndex::FindPlace(std::string_view cdjid, std::int32_t number) const {
    const auto album = cdjids_.Find(cdjid);
    return album ? Find(*album, number) : nullptr;
}

const IndexedTrack* TrackIndex::FindId(std::int32_t id) const {
    const auto row =
        byId_.Find(IdHash(id), [&](HashIndex::Row at) { return tracks_[at].id == id; });
    return row ? &tracks_[*row] : nullptr;
}

}  // namespace quillon
